// ICMP echo by a datagram socket, or a raw one where that is refused.
#pragma once

#include "platform/icmp_echo.h"

namespace varkel {

// The system gives datagram sockets to the groups of net.ipv4.ping_group_range, raw ones to root. What
// others send than the host itself does not count, and a host that is known to be out of reach ends the wait.
class IcmpSocket final : public IcmpEcho {
  public:
    // False as well for more than `mostData` bytes.
    bool IcmpSendEcho(std::string_view address, std::span<const std::byte> data, Ticks timeout) override;

    static constexpr std::size_t mostData = 1024;
};

}  // namespace varkel
