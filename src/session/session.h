// What every part of the session works with.
#pragma once

#include "modem/at_channel.h"
#include "platform/platform.h"
#include "session/screens.h"
#include "session/session_state.h"
#include "session/settings.h"

namespace varkel {

// References that outlive the parts.
struct Session {
    Platform& platform;
    SessionState& state;
    Settings& settings;
    CATChannel& at;
    Screens& screens;
};

// The dialog thread's timers.
enum class SessionTimer : TimerId {
    StatusLine = 1,
    Signal = 2,
    BackgroundOpen = 3,
    DialTimeout = 5,
    SignalRepeat = 11,
    OneShots = 12,
};

}  // namespace varkel
