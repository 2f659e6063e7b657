// Text as UCS2: UTF-16 units, the high octet first (3GPP TS 23.038, 6.2.3).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/code_page.h"

namespace varkel {

// The most units that are converted at once.
inline constexpr std::size_t mostUcs2Units = 128;

// Returns the number of octets: two for each unit, of at most 128 units and what `octets` has room for.
std::size_t EncodeUcs2(const CodePage& page, std::string_view narrow, std::span<std::uint8_t> octets);

// Narrow text, ended by a NUL and cut at a character where `narrow` is too short. Returns the number of
// units: half that of the octets, at most 128. A paragraph separator becomes a blank.
std::size_t DecodeUcs2(const CodePage& page, std::span<const std::uint8_t> octets, std::span<char> narrow);

}  // namespace varkel
