#include "simulator/septets.h"

#include <cstdint>

namespace varkel::sim {

std::string PackSeptets(std::string_view septets, unsigned fillBits) {
    std::string octets;
    unsigned bits = 0;
    unsigned held = fillBits;  // bits that wait for their octet
    for (const char septet : septets) {
        bits |= (static_cast<unsigned>(septet) & 0x7Fu) << held;
        held += 7;
        if (held < 8) continue;
        octets += static_cast<char>(bits & 0xFFu);
        bits >>= 8;
        held -= 8;
    }
    if (held > 0) octets += static_cast<char>(bits);
    return octets;
}

std::string UnpackSeptets(std::string_view octets, std::size_t count, unsigned fillBits) {
    std::string septets;
    for (std::size_t at = fillBits; septets.size() < count && at + 7 <= octets.size() * 8; at += 7) {
        const std::size_t octet = at / 8;
        unsigned bits = static_cast<std::uint8_t>(octets[octet]);
        if (octet + 1 < octets.size()) bits |= unsigned{static_cast<std::uint8_t>(octets[octet + 1])} << 8;
        septets += static_cast<char>((bits >> at % 8) & 0x7Fu);
    }
    return septets;
}

}  // namespace varkel::sim
