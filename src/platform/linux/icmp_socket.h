// ICMP echo by a datagram socket, or a raw one where that is refused.
#pragma once

#include "platform/icmp_echo.h"

namespace varkel {

class IcmpSocket final : public IcmpEcho {
  public:
    bool IcmpSendEcho(std::string_view address, std::span<const std::byte> data, Ticks timeout) override;
};

}  // namespace varkel
