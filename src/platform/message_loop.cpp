#include "platform/message_loop.h"

#include <algorithm>
#include <utility>

namespace varkel {

MessageLoop::MessageLoop(Runtime& runtime)
    : m_runtime(runtime),
      m_thread(runtime.CurrentThreadId()),
      m_wake(runtime.CreateEvent(EventReset::Automatic)) {}

MessageLoop::~MessageLoop() = default;

bool MessageLoop::Post(std::function<void()> work) {
    {
        std::lock_guard lock(m_mutex);
        if (m_work.size() >= queueLimit) return false;
        m_work.push_back(std::move(work));
    }
    m_wake->Set();
    return true;
}

void MessageLoop::SetTimer(TimerId id, Ticks period, std::function<void()> handler) {
    const Ticks due = m_runtime.GetTickCount() + period;
    {
        std::lock_guard lock(m_mutex);
        m_timers[id] = Timer{due, std::max<Ticks>(period, 1), std::move(handler)};
    }
    m_wake->Set();
}

void MessageLoop::KillTimer(TimerId id) {
    std::lock_guard lock(m_mutex);
    m_timers.erase(id);
}

bool MessageLoop::OnDialogThread() const {
    return m_runtime.CurrentThreadId() == m_thread;
}

std::function<void()> MessageLoop::Next(Ticks& wait) {
    const Ticks now = m_runtime.GetTickCount();
    std::lock_guard lock(m_mutex);
    wait = infiniteTicks;
    for (auto& [id, timer] : m_timers) {
        // A due time that lies behind is at most half the tick range away.
        const Ticks late = TicksSince(now, timer.due);
        if (late < 0x80000000u) {
            timer.due += timer.period * (late / timer.period + 1);
            return timer.handler;
        }
        wait = std::min(wait, timer.due - now);
    }
    if (m_work.empty()) return nullptr;
    auto work = std::move(m_work.front());
    m_work.pop_front();
    return work;
}

void MessageLoop::Run(const std::function<bool()>& done) {
    while (!Quitting() && !done()) {
        Ticks wait = infiniteTicks;
        if (auto work = Next(wait)) {
            work();
        } else {
            m_wake->Wait(wait);
        }
    }
}

void MessageLoop::Quit() {
    {
        std::lock_guard lock(m_mutex);
        m_quit = true;
    }
    m_wake->Set();
}

bool MessageLoop::Quitting() const {
    std::lock_guard lock(m_mutex);
    return m_quit;
}

}  // namespace varkel
