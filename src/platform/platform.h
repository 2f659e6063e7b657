// Everything the program needs from the system it runs on, in one place.
#pragma once

#include "platform/code_page.h"
#include "platform/dial_up.h"
#include "platform/icmp_echo.h"
#include "platform/kovex_drv_api.h"
#include "platform/language.h"
#include "platform/log.h"
#include "platform/message_loop.h"
#include "platform/named_objects.h"
#include "platform/notices.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "platform/runtime.h"
#include "platform/serial_port.h"
#include "platform/sound.h"
#include "platform/speech_engine.h"
#include "platform/unit_files.h"
#include "platform/window_messages.h"

namespace varkel {

// References to services that outlive everything built on them.
struct Platform {
    Runtime& runtime;
    MessageLoop& loop;
    SerialPort& serial;
    Registry& registry;
    NamedObjects& objects;
    WindowMessages& windows;
    KovexDrvApi& driver;
    DialUp& dialUp;
    IcmpEcho& icmp;
    UnitFiles& files;
    Processes& processes;
    Sound& sound;
    SpeechEngine& speech;
    Notices& notices;
    Language& language;
    const CodePage& codePage;
    Log& log;
};

}  // namespace varkel
