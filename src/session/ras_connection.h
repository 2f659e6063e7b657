// The dial-up connection: dialling it, its states, and its end.
#pragma once

#include <functional>
#include <utility>

#include "platform/dial_up.h"
#include "platform/guarded.h"
#include "session/session.h"

namespace varkel {

// Names a dial for as long as the program runs; 0 is none.
using DialNumber = unsigned;

// Dialled and hung up by one thread at a time; the states come on the dialog thread. Those of a connection
// that was hung up meanwhile mean nothing any more. How far it is stands in SessionState::m_dataState.
class RasConnection {
  public:
    // The connection has ended by itself, or was not there 240 s after its port was opened.
    enum class End { Disconnected, TimedOut };
    // `onEnd` runs on the dialog thread; the connection is to be hung up.
    RasConnection(Session& session, std::function<void(DialNumber, End)> onEnd)
        : m_session(session), m_onEnd(std::move(onEnd)) {}
    ~RasConnection();

    // Starts to dial; false when that is refused. Not while there is a connection.
    [[nodiscard]] bool Dial(const RasDialParams& params);
    // Takes some seconds. False when there was no connection.
    bool HangUp();

    // From Dial to HangUp; None otherwise. Any thread.
    RasHandle Handle() const;
    // 0 when there is none. Any thread.
    DialNumber Current() const;

    static constexpr Ticks longestDial = 240'000;

  private:
    struct Dialled {
        DialNumber number = 0;
        RasHandle handle = RasHandle::None;
        bool over = false;  // has reported its last state
    };

    void OnState(DialNumber number, RasState state);
    void StartTimer(DialNumber number);

    Session& m_session;
    std::function<void(DialNumber, End)> m_onEnd;
    mutable Guarded<Dialled> m_dialled;
    DialNumber m_last = 0;  // of the thread that dials
};

}  // namespace varkel
