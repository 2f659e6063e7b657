// The state that several parts of the session share, under the names by which the unit's programs know it.
#pragma once

#include <atomic>
#include <string>

#include "platform/fixed_text.h"
#include "platform/guarded.h"
#include "platform/runtime.h"
#include "session/modem_profile.h"

namespace varkel {

enum class ScreenMode : int { Idle = 0, InCall = 1, Closed = 2 };

// The answers to "AT+CPIN?" (3GPP TS 27.007, 8.3).
enum class SimState : int {
    Unknown = -1,
    Ready = 0,
    Pin = 1,
    Puk = 2,
    Pin2 = 3,
    Puk2 = 4,
    PhSimPin = 5,
    PhNetPin = 6,
};

enum class SimPresence { Unknown, Present, Absent };

// How far the data link is.
enum class DataState { Off, Dialling, Connected };

enum class IdQuery : int { None = 0, Imsi = 1, Imei = 2 };

// Written by the thread that each comment names, read by any.
struct SessionState {
    std::atomic<ScreenMode> MainScreenMode = ScreenMode::Closed;

    // Dialog thread.
    std::atomic<bool> g_bTTSOpen = true;  // captions are spoken; as last read
    // A call that is established next waits until the redial button's caption has been spoken.
    std::atomic<bool> m_bAudioDelay = false;

    // Open thread.
    std::atomic<const ModemProfile*> profile = &unitModule;  // of the module that was opened last
    std::atomic<bool> m_bModuleOpen = false;     // from the first step of opening to the end of shutting down
    std::atomic<bool> m_bModulePowered = false;  // the USB link came up after power-on
    std::atomic<bool> m_bPinEntered = false;
    std::atomic<bool> m_bAutoConnect = false;  // a successful open goes on to dial the data link
    std::atomic<bool> g_bSilentOpen = false;   // opening shows no failure but a missing power-up
    std::atomic<IdQuery> m_nIdQuery = IdQuery::None;

    // Read thread; the open thread resets them.
    std::atomic<bool> m_bModuleReady = false;
    std::atomic<bool> m_bModelInitComplete = false;
    std::atomic<bool> g_bSimOk = true;
    std::atomic<SimState> m_nCpinState = SimState::Unknown;
    std::atomic<SimPresence> m_simPresence = SimPresence::Unknown;
    std::atomic<bool> m_bCsqReceived = false;
    std::atomic<int> m_nSimBookUsed = 0;
    std::atomic<int> m_nSimBookTotal = 0;
    std::atomic<Ticks> m_lastReceive = 0;
    std::atomic<bool> m_everReceived = false;  // m_lastReceive means something

    Guarded<FixedText<10>> m_szCsq;  // at most two digits
    Guarded<std::string> m_strImsi;
    Guarded<std::string> m_strImei;

    // Any thread.
    std::atomic<bool> m_bSignalPolling = false;
    std::atomic<int> m_nLowSignalCount = 0;   // 0..3
    std::atomic<bool> m_bCallActive = false;  // a call rings, is dialled or is up
    std::atomic<DataState> m_dataState = DataState::Off;
    std::atomic<bool> m_externalClient = false;  // a message of another program waits for its result
    std::atomic<bool> m_bOpenPending = false;    // opening waits until the window is shown
    std::atomic<bool> m_bWindowHidden = false;   // left with the module on
    std::atomic<int> m_nNewMessages = 0;         // since the user last opened the new-message screen

    // Dialog thread, at the start.
    std::atomic<int> m_nDialogType = 1;
};

}  // namespace varkel
