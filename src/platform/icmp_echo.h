// ICMP echo: asks a host whether it can be reached.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/runtime.h"

namespace varkel {

class IcmpEcho {
  public:
    virtual ~IcmpEcho() = default;

    // Sends one echo request with that data to an IPv4 address in numbers and waits for its reply, at most
    // `timeout` ms. True when the host answered with the same data; false as well when the address is none or
    // the system lets nobody ask. Any thread but the dialog thread.
    virtual bool IcmpSendEcho(std::string_view address, std::span<const std::byte> data, Ticks timeout) = 0;
};

}  // namespace varkel
