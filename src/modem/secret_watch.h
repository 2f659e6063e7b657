// Keeps codes out of the log: how long the digits of received text must be masked.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "platform/log.h"

namespace varkel {

// The modem echoes a command with its PIN, PUK or password, in pieces of any size and maybe late. So digits
// are masked from such a command until a final result has followed its echo. A modem whose echo is off has
// its digits masked until the first final result that comes `patience` ms after the command.
class SecretWatch {
  public:
    explicit SecretWatch(Log& log) : m_log(log) {}

    // A command with a code is about to be sent. Any thread.
    void CommandSent(Ticks now);
    // A chunk that has been logged, while digits are masked. Read thread.
    void Received(std::string_view chunk, Ticks now);

    static constexpr Ticks patience = 10'000;

  private:
    Log& m_log;
    std::mutex m_mutex;
    int m_outstanding = 0;  // commands whose final result has not come
    bool m_echoSeen = false;
    Ticks m_lastSent = 0;
    std::string m_tail;  // of what was received, for words that came in pieces; at most 64 characters
};

}  // namespace varkel
