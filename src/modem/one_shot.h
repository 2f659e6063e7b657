// A flag that the sending side sets and the next final result consumes.
#pragma once

#include <atomic>

#include "platform/runtime.h"

namespace varkel {

// Set on the threads that send, taken on the read thread, timed out on the dialog thread.
class OneShot {
  public:
    void Set(Ticks now) {
        m_since = now;
        m_pending = 1;
    }

    // Clears the flag; true when it was set.
    bool Take() { return m_pending.exchange(0) != 0; }
    bool Pending() const { return m_pending != 0; }
    // Since when; of meaning only while it is pending.
    Ticks Since() const { return m_since; }

  private:
    std::atomic<int> m_pending = 0;
    std::atomic<Ticks> m_since = 0;
};

}  // namespace varkel
