// Dial-up networking: one packet-data connection, dialled by the name of its entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace varkel {

// The numbers are those of RASCONNSTATE.
enum class RasState : std::uint32_t {
    OpenPort = 0,
    PortOpened = 1,
    ConnectDevice = 2,
    DeviceConnected = 3,
    AllDevicesConnected = 4,
    Authenticate = 5,
    Authenticated = 14,
    Connected = 0x2000,
    Disconnected = 0x2001,
};

// A connection, from RasDial until it has ended. Never given twice while the program runs.
enum class RasHandle : std::uint32_t { None = 0 };

// What a number to RasDial came back with; the numbers are those of the system's errors.
enum class RasError : std::uint32_t { None = 0, Busy = 633, CannotDial = 651 };

struct RasDialParams {
    std::string entryName;  // a name of the system's own configuration, such as "connet"
    std::string userName;   // UTF-8, at most `longestName` characters; empty = none
    std::string password;

    static constexpr std::size_t longestName = 128;
};

// Any thread may call.
class DialUp {
  public:
    virtual ~DialUp() = default;

    // Starts to dial and returns at once. `notifier` runs on the dialog thread, from its message loop, for
    // each state that the connection reaches; the last one is Disconnected, however the connection ended,
    // unless RasHangUp ended it. With an error `handle` is None and the notifier is never called.
    virtual RasError RasDial(const RasDialParams& params, std::function<void(RasState)> notifier,
                             RasHandle& handle) = 0;
    // Ends the connection, dialled or still dialling; waits until it has let go of the modem, at most some
    // seconds. A state that was reported before may still reach the notifier. Unknown handles are ignored.
    virtual void RasHangUp(RasHandle handle) = 0;
    // The IPv4 address of the other end, in numbers; "" while it is not known, and for unknown handles.
    virtual std::string PeerAddress(RasHandle handle) = 0;
};

}  // namespace varkel
