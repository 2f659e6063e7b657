// Calls, as the rest of the session uses them.
#pragma once

#include <string_view>

namespace varkel {

class CallControl {
  public:
    virtual ~CallControl() = default;

    // Reads the three call lists from their files. Open thread.
    virtual void ReloadRecords() = 0;
    // A call rings, is dialled or is established. Any thread.
    virtual bool Busy() const = 0;
    // Read thread; quick.
    virtual void OnRing() = 0;
    virtual void OnRingNo(std::string_view text) = 0;
    virtual void OnCallEstablished() = 0;
    virtual void OnCallHooked() = 0;
    virtual void OnUssd(std::string_view text) = 0;
};

}  // namespace varkel
