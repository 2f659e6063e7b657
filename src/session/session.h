// What every part of the session works with.
#pragma once

#include <string>
#include <vector>

#include "modem/at_channel.h"
#include "platform/platform.h"
#include "session/screens.h"
#include "session/session_state.h"
#include "session/settings.h"

namespace varkel {

// What an integrator chooses for a unit.
struct SessionOptions {
    // Null: found out at each opening.
    const ModemProfile* profile = &unitModule;
    // Put in front of the destination of a message that is not international; empty = nothing is.
    std::string countryCode = "86";
    // Hosts that a link test asks, in this order, IPv4 in numbers; empty = the other end of the dial-up link.
    std::vector<std::string> pingAddresses = {};
};

// References that outlive the parts.
struct Session {
    Platform& platform;
    SessionState& state;
    Settings& settings;
    CATChannel& at;
    Screens& screens;
    SessionOptions options = {};
};

// The module is open and can be given commands besides those of opening and closing it. Any thread.
inline bool ModuleReady(const Session& session) {
    return session.at.LinkUp() && session.state.m_bModuleOpen &&
           session.state.MainScreenMode != ScreenMode::Closed;
}

// The dialog thread's timers.
enum class SessionTimer : TimerId {
    StatusLine = 1,
    Signal = 2,
    BackgroundOpen = 3,
    DialTimeout = 5,
    SignalRepeat = 11,
    OneShots = 12,
    SendTip = 13,
    RingLost = 14,
    CallLink = 15,
};

}  // namespace varkel
