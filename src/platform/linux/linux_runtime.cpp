#include "platform/linux/linux_runtime.h"

#include <atomic>
#include <cassert>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <pthread.h>
#include <sched.h>
#include <system_error>
#include <thread>
#include <time.h>
#include <utility>

namespace varkel {

namespace {

using Clock = std::chrono::steady_clock;

std::chrono::microseconds RealTimeAt(unsigned speed, Ticks ticks) {
    if (ticks == infiniteTicks) return std::chrono::microseconds::max();
    return std::chrono::microseconds(std::uint64_t{ticks} * 1000 / speed);
}

// Waits under `lock` for `ready`, for at most `timeout` ms of a runtime that runs `speed` times as fast as
// the clock.
template <class Ready>
bool WaitFor(std::condition_variable& changed, std::unique_lock<std::mutex>& lock, Ticks timeout,
             unsigned speed, Ready ready) {
    if (timeout == infiniteTicks) {
        changed.wait(lock, ready);
        return true;
    }
    const auto deadline = Clock::now() + RealTimeAt(speed, timeout);
    return changed.wait_until(lock, deadline, ready);
}

class LinuxEvent final : public Event {
  public:
    LinuxEvent(EventReset reset, unsigned speed) : m_reset(reset), m_speed(speed) {}

    void Set() override {
        std::lock_guard lock(m_mutex);
        m_signalled = true;
        m_changed.notify_all();
    }

    void Reset() override {
        std::lock_guard lock(m_mutex);
        m_signalled = false;
    }

    WaitResult Wait(Ticks timeout) override {
        std::unique_lock lock(m_mutex);
        if (!WaitFor(m_changed, lock, timeout, m_speed, [this] { return m_signalled; }))
            return WaitResult::Timeout;
        if (m_reset == EventReset::Automatic) m_signalled = false;
        return WaitResult::Object0;
    }

  private:
    const EventReset m_reset;
    const unsigned m_speed;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_signalled = false;
};

thread_local LinuxThread* currentThread = nullptr;

// The id of a thread that the runtime did not make, the dialog thread foremost.
ThreadId ForeignThreadId() {
    static std::atomic<std::uint32_t> last = 0x80000000u;
    thread_local const ThreadId id{++last};
    return id;
}

}  // namespace

// Shared by the running thread, which keeps itself alive, and the handles to it.
class LinuxThread final : public Thread {
  public:
    LinuxThread(ThreadId id, unsigned speed) : m_id(id), m_speed(speed) {}

    ThreadId Id() const override { return m_id; }

    void ResumeThread() override {
        std::lock_guard lock(m_mutex);
        m_mayRun = true;
        m_changed.notify_all();
    }

    WaitResult Wait(Ticks timeout) override {
        std::unique_lock lock(m_mutex);
        const bool ended = WaitFor(m_changed, lock, timeout, m_speed, [this] { return m_ended; });
        return ended ? WaitResult::Object0 : WaitResult::Timeout;
    }

    void Suspend() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_mayRun; });
        m_mayRun = false;
    }

    bool Post(ThreadMessage& message) {
        std::lock_guard lock(m_mutex);
        if (m_ended || m_messages.size() >= Runtime::threadQueueLimit) return false;
        m_messages.push_back(std::move(message));
        m_changed.notify_all();
        return true;
    }

    ThreadMessage Take() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_messages.empty(); });
        ThreadMessage message = std::move(m_messages.front());
        m_messages.pop_front();
        return message;
    }

    void End() {
        std::lock_guard lock(m_mutex);
        m_ended = true;
        m_messages.clear();
        m_changed.notify_all();
    }

    bool Ended() const {
        std::lock_guard lock(m_mutex);
        return m_ended;
    }

  private:
    const ThreadId m_id;
    const unsigned m_speed;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<ThreadMessage> m_messages;
    bool m_mayRun = false;  // a resume that nobody has used yet
    bool m_ended = false;
};

LinuxRuntime::LinuxRuntime(unsigned speed) : m_speed(speed) {}

LinuxRuntime::~LinuxRuntime() = default;

Ticks LinuxRuntime::GetTickCount() {
    const auto since = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch());
    return static_cast<Ticks>(static_cast<std::uint64_t>(since.count()) * m_speed / 1000);
}

void LinuxRuntime::Sleep(Ticks milliseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(std::uint64_t{milliseconds} * 1000 / m_speed));
}

LocalTime LinuxRuntime::GetLocalTime() {
    const time_t now = time(nullptr);
    tm fields{};
    localtime_r(&now, &fields);
    return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
            fields.tm_hour,        fields.tm_min,     fields.tm_sec};
}

std::shared_ptr<Event> LinuxRuntime::CreateEvent(EventReset reset) {
    return std::make_shared<LinuxEvent>(reset, m_speed);
}

std::shared_ptr<Thread> LinuxRuntime::CreateThread(const ThreadOptions& options, std::function<void()> body) {
    std::shared_ptr<LinuxThread> thread;
    {
        std::lock_guard lock(m_mutex);
        std::erase_if(m_threads, [](const auto& entry) { return entry.second.expired(); });
        const ThreadId id{++m_lastId};
        thread = std::make_shared<LinuxThread>(id, m_speed);
        m_threads[id] = thread;
    }
    try {
        std::thread([thread, options, body = std::move(body)]() mutable {
            currentThread = thread.get();
            pthread_setname_np(pthread_self(), options.name.substr(0, 15).c_str());
            if (options.priority == ThreadPriority::Lowest) {
                const sched_param lowest{};
                pthread_setschedparam(pthread_self(), SCHED_IDLE, &lowest);
            }
            if (options.suspended) thread->Suspend();
            body();
            body = nullptr;  // what it holds is gone before anybody hears of the end
            thread->End();
        }).detach();
    } catch (const std::system_error&) {
        return nullptr;
    }
    return thread;
}

ThreadId LinuxRuntime::CurrentThreadId() {
    return currentThread ? currentThread->Id() : ForeignThreadId();
}

void LinuxRuntime::SuspendThread() {
    assert(currentThread);
    currentThread->Suspend();
}

bool LinuxRuntime::PostThreadMessage(ThreadId id, ThreadMessage& message) {
    const auto thread = Find(id);
    return thread && thread->Post(message);
}

ThreadMessage LinuxRuntime::GetMessage() {
    assert(currentThread);
    return currentThread->Take();
}

std::chrono::microseconds LinuxRuntime::RealTime(Ticks ticks) const {
    return RealTimeAt(m_speed, ticks);
}

std::size_t LinuxRuntime::RunningThreads() const {
    std::lock_guard lock(m_mutex);
    std::size_t running = 0;
    for (const auto& [id, weak] : m_threads) {
        const auto thread = weak.lock();
        if (thread && !thread->Ended()) ++running;
    }
    return running;
}

std::shared_ptr<LinuxThread> LinuxRuntime::Find(ThreadId id) const {
    std::lock_guard lock(m_mutex);
    const auto found = m_threads.find(id);
    return found == m_threads.end() ? nullptr : found->second.lock();
}

}  // namespace varkel
