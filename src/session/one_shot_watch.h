// Sees to it that no one-shot of the AT channel waits for ever for its final result.
#pragma once

#include "session/call_control.h"
#include "session/message_handling.h"
#include "session/session.h"
#include "session/signal_watch.h"

namespace varkel {

// A dial, message or USSD request that has no final result after 60 s, and a hang-up after 10 s, is cleared
// and reported as failed, and the signal poll goes on.
class OneShotWatch {
  public:
    OneShotWatch(Session& session, CallControl& calls, MessageHandling& messages, SignalWatch& signal);

    // Whoever sets a one-shot calls this. The watch ends by itself when none is pending. Any thread.
    void Watch();

    static constexpr Ticks longestResult = 60'000;
    static constexpr Ticks longestHangUp = 10'000;

  private:
    void OnTimer();
    bool Expired(OneShot& oneShot, Ticks limit, const char* name);

    Session& m_session;
    CallControl& m_calls;
    MessageHandling& m_messages;
    SignalWatch& m_signal;
};

}  // namespace varkel
