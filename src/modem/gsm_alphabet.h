// The default alphabet of GSM with its extension table (3GPP TS 23.038, 6.2.1).
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/code_page.h"

namespace varkel {

// The UTF-16 units of as many seven-bit codes as there is room for; returns how many these are.
std::size_t Utf16FromGsm(std::string_view codes, std::span<char16_t> units);

// Text of seven-bit codes as narrow text, ended by a NUL. Returns the number of bytes; the end is cut at a
// character where `narrow` is too short. At most 256 codes are taken.
std::size_t NarrowFromGsm(const CodePage& page, std::string_view codes, std::span<char> narrow);

}  // namespace varkel
