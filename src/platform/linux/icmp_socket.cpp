#include "platform/linux/icmp_socket.h"

namespace varkel {

bool IcmpSocket::IcmpSendEcho(std::string_view, std::span<const std::byte>, Ticks) {
    return false;
}

}  // namespace varkel
