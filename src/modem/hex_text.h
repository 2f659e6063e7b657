// Octets as hexadecimal text, the form in which PDUs travel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace varkel {

// Upper-case digits, the high half first, ended by a NUL. Returns the number of digits: twice that of the
// octets, or less when `hex` has no room for all of them.
std::size_t BytesToHex(std::span<const std::uint8_t> bytes, std::span<char> hex);

// Returns the number of octets: half that of the characters, or what `bytes` has room for. Any character is
// taken; only upper-case digits give the octet that is meant.
std::size_t HexToBytes(std::string_view hex, std::span<std::uint8_t> bytes);

// The octet that two characters stand for, by the same rule.
constexpr std::uint8_t HexOctet(char high, char low) {
    const auto value = [](char c) {
        const unsigned code = static_cast<unsigned char>(c);
        return code - (code - '0' < 10 ? '0' : 'A' - 10);
    };
    return static_cast<std::uint8_t>(value(high) * 16 + value(low));
}

}  // namespace varkel
