// Seven-bit characters packed into octets (3GPP TS 23.038, 6.1.2.1).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace varkel::sim {

inline constexpr std::size_t SeptetOctets(std::size_t septets) {
    return (septets * 7 + 7) / 8;
}

// The first character begins behind `fillBits` bits of nothing, 0 to 6, which bring a text that follows a
// header to a septet's border.
std::string PackSeptets(std::string_view septets, unsigned fillBits = 0);
// `count` characters, one byte each; fewer when the octets end before.
std::string UnpackSeptets(std::string_view octets, std::size_t count, unsigned fillBits = 0);

}  // namespace varkel::sim
