// A runtime in virtual time. Its threads are real, but exactly one of them runs; a seed chooses the next at
// every call that waits or wakes, and when nobody can run the clock jumps to the next deadline. The same seed
// gives the same run.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/runtime.h"

namespace varkel::test {

// Where the tick count starts unless a test says otherwise: 180 s before it wraps.
inline constexpr Ticks startTicks = 0xFFFFFFFFu - 180'000 + 1;

// The calling thread becomes the first virtual thread. A run in which nobody can go on and no deadline is
// left ends the process with a report of who waits for what, and with the seed.
//
// Nothing may wait, post or signal while it holds a std::mutex: another thread would wait for it outside
// virtual time.
class VirtualRuntime final : public Runtime {
  public:
    explicit VirtualRuntime(std::uint64_t seed, Ticks start = startTicks);
    // Every thread that was made must have ended.
    ~VirtualRuntime() override;

    Ticks GetTickCount() override;
    void Sleep(Ticks milliseconds) override;
    LocalTime GetLocalTime() override;
    std::shared_ptr<Event> CreateEvent(EventReset reset) override;
    std::shared_ptr<Thread> CreateThread(const ThreadOptions& options, std::function<void()> body) override;
    ThreadId CurrentThreadId() override;
    void SuspendThread() override;
    bool PostThreadMessage(ThreadId thread, ThreadMessage& message) override;
    ThreadMessage GetMessage() override;

    // Milliseconds since the start; never wraps.
    std::uint64_t Elapsed() const;
    // A number that every choice so far went into.
    std::uint64_t TraceHash() const;
    // From now on CreateThread fails for threads of that name; "" = none.
    void RefuseThreads(std::string name) { m_refused = std::move(name); }

    struct Scheduler;

  private:
    std::unique_ptr<Scheduler> m_scheduler;
    std::string m_refused;
};

}  // namespace varkel::test
