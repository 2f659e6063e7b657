// Characters of seven bits packed into octets (3GPP TS 23.038, 6.1.2.1).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace varkel {

// Returns the number of octets written, at most what `octets` has room for. Every eighth character only waits
// for the next, so the text is given with a NUL behind it, which brings out the last bits.
std::size_t Pack7Bit(std::string_view text, std::span<std::uint8_t> octets);

// Returns the number of characters written, at most one less than `text` has room for: a NUL ends them. Seven
// octets give eight characters, the last of which may be no more than the padding.
std::size_t Unpack7Bit(std::span<const std::uint8_t> octets, std::span<char> text);

}  // namespace varkel
