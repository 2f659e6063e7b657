// The runtime of the system: std::thread, condition variables and CLOCK_MONOTONIC.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>

#include "platform/runtime.h"

namespace varkel {

class LinuxThread;

class LinuxRuntime final : public Runtime {
  public:
    // `speed` virtual milliseconds pass in each real one: 1 on a unit; tests of long sequences run faster.
    explicit LinuxRuntime(unsigned speed = 1);
    ~LinuxRuntime() override;

    Ticks GetTickCount() override;
    void Sleep(Ticks milliseconds) override;
    LocalTime GetLocalTime() override;
    std::shared_ptr<Event> CreateEvent(EventReset reset) override;
    std::shared_ptr<Thread> CreateThread(const ThreadOptions& options, std::function<void()> body) override;
    ThreadId CurrentThreadId() override;
    void SuspendThread() override;
    bool PostThreadMessage(ThreadId thread, ThreadMessage& message) override;
    ThreadMessage GetMessage() override;

    // How long that many ticks take by the clock; microseconds::max() for infiniteTicks.
    std::chrono::microseconds RealTime(Ticks ticks) const;

    // How many threads have not ended. At the end of the program those that hang in the system keep it from
    // tidying up: then the caller leaves by std::quick_exit.
    std::size_t RunningThreads() const;

  private:
    std::shared_ptr<LinuxThread> Find(ThreadId id) const;

    const unsigned m_speed;
    mutable std::mutex m_mutex;
    std::uint32_t m_lastId = 0;
    std::map<ThreadId, std::weak_ptr<LinuxThread>> m_threads;
};

}  // namespace varkel
