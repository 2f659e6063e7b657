// The services of the Linux backend, put together as the unit file says.
#pragma once

#include <functional>
#include <memory>

#include "platform/language.h"
#include "platform/linux/bus.h"
#include "platform/linux/bus_window_messages.h"
#include "platform/linux/display_code_page.h"
#include "platform/linux/espeak_speech.h"
#include "platform/linux/icmp_socket.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/pppd_dial_up.h"
#include "platform/linux/problem_sink.h"
#include "platform/linux/sdl_sound.h"
#include "platform/linux/shm_named_objects.h"
#include "platform/linux/skin.h"
#include "platform/linux/sqlite_registry.h"
#include "platform/linux/tty_serial_port.h"
#include "platform/linux/unit_settings.h"
#include "platform/platform.h"

namespace varkel {

class LinuxPlatform {
  public:
    // `onProblem` hears what a service reports of itself.
    LinuxPlatform(LinuxRuntime& runtime, MessageLoop& loop, const UnitSettings& settings,
                  ProblemSink onProblem);

    // Null when no registry could be opened, without which the program cannot run.
    Registry* GetRegistry() { return m_registry.get(); }
    Language& GetLanguage() { return m_language; }
    Log& GetLog() { return m_log; }
    UnitFiles& GetFiles() { return m_files; }
    WindowMessages& GetWindows() { return m_windows; }

    // Everything, with the message boxes of whoever draws them. Not without a registry.
    Platform Services(Notices& notices);

  private:
    LinuxRuntime& m_runtime;
    MessageLoop& m_loop;
    const Skin m_skin;
    LinuxUnitFiles m_files;
    Log m_log;
    Language m_language;
    DisplayCodePage m_codePage;
    std::unique_ptr<SqliteRegistry> m_registry;
    ShmNamedObjects m_objects;
    Bus m_bus;
    BusWindowMessages m_windows;
    std::unique_ptr<KovexDrvApi> m_driver;
    PppdDialUp m_dialUp;
    IcmpSocket m_icmp;
    TtySerialPort m_serial;
    LinuxProcesses m_processes;
    SdlSound m_sound;
    EspeakSpeech m_speech;
};

}  // namespace varkel
