// The digits of numbers and times in a PDU: two to an octet, the first in the low half (3GPP
// TS 23.040, 9.1.2.3).
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace varkel {

// Swaps each pair, after an "F" has made an odd count even. Returns the number of digits written: never more
// than `swapped` has room for, and always even.
std::size_t SwapDigits(std::string_view digits, std::span<char> swapped);

// Swaps each pair back and leaves out an "F" at the very end. Returns the number of digits written: never
// more than `digits` has room for. A value above 9 comes out as the letter it is written with.
std::size_t UnswapDigits(std::string_view swapped, std::span<char> digits);

}  // namespace varkel
