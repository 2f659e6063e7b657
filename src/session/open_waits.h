// The waits of the open sequence, each of which a cancel ends.
#pragma once

#include <algorithm>
#include <memory>

#include "platform/runtime.h"

namespace varkel {

class OpenWaits {
  public:
    explicit OpenWaits(Runtime& runtime)
        : m_runtime(runtime), m_cancel(runtime.CreateEvent(EventReset::Manual)) {}

    // Any thread.
    void Cancel() { m_cancel->Set(); }
    void Reset() { m_cancel->Reset(); }
    bool Cancelled() { return m_cancel->Wait(0) == WaitResult::Object0; }

    // Sleeps; false when cancelled.
    [[nodiscard]] bool Pause(Ticks milliseconds) {
        return m_cancel->Wait(milliseconds) != WaitResult::Object0;
    }

    enum class Outcome { Done, TimedOut, Cancelled };

    // Calls `poll` every `slice` ms until it returns true, for as long as no more than `limit` ms have passed
    // since `start`.
    template <class Poll>
    [[nodiscard]] Outcome Until(Poll poll, Ticks start, Ticks limit, Ticks slice) {
        while (TicksSince(m_runtime.GetTickCount(), start) <= limit) {
            if (poll()) return Outcome::Done;
            if (!Pause(slice)) return Outcome::Cancelled;
        }
        return Outcome::TimedOut;
    }

  private:
    Runtime& m_runtime;
    std::shared_ptr<Event> m_cancel;
};

}  // namespace varkel
