// The dialog thread's message loop: the one place where that thread waits, for posted work and for its
// timers.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/runtime.h"

namespace varkel {

using TimerId = int;

class MessageLoop {
  public:
    // Created on the dialog thread.
    explicit MessageLoop(Runtime& runtime);
    ~MessageLoop();

    // Queues work for the dialog thread. False, and the work is dropped, when `queueLimit` are waiting. Any
    // thread.
    bool Post(std::function<void()> work);

    // Runs `handler` on the dialog thread every `period` ms until KillTimer; replaces a timer of the same id.
    // Late rounds are left out, not caught up. Any thread.
    void SetTimer(TimerId id, Ticks period, std::function<void()> handler);
    // After this, on the dialog thread, the handler does not run any more. Any thread.
    void KillTimer(TimerId id);

    bool OnDialogThread() const;

    // Serves work and timers until `done` is true or Quit was called. A modal screen is a Run inside a
    // handler. `done` is asked after each piece of work: whoever changes what it looks at posts something, if
    // only an empty function.
    void Run(const std::function<bool()>& done);
    // Ends every Run, the nested ones too. Any thread.
    void Quit();
    bool Quitting() const;

    static constexpr std::size_t queueLimit = 16384;

  private:
    struct Timer {
        Ticks due = 0;
        Ticks period = 0;
        std::function<void()> handler;
    };

    // The next work or due timer; null when there is none, and then `wait` tells for how long.
    std::function<void()> Next(Ticks& wait);

    Runtime& m_runtime;
    ThreadId m_thread;
    std::shared_ptr<Event> m_wake;
    mutable std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
    std::map<TimerId, Timer> m_timers;
    bool m_quit = false;
};

}  // namespace varkel
