// The end of the program at the wish of the user or the system.
#pragma once

#include <atomic>
#include <functional>
#include <pthread.h>
#include <signal.h>
#include <thread>

namespace varkel {

// SIGINT and SIGTERM. Made before any other thread, so that none of them ever runs a signal handler; SIGPIPE
// is ignored from then on, so that a closed pipe is a failed write.
class Termination {
  public:
    // The first signal calls `onFirst`, which must not wait, on a thread of its own; the second one ends the
    // process at once with 130.
    explicit Termination(std::function<void()> onFirst);
    // From now on the signals end the process again.
    ~Termination();
    Termination(const Termination&) = delete;
    Termination& operator=(const Termination&) = delete;

  private:
    void AwaitSignals(const std::function<void()>& onFirst);

    sigset_t m_signals{};
    sigset_t m_before{};
    std::atomic<bool> m_closing = false;
    std::thread m_thread;
};

}  // namespace varkel
