// Registry values as people write and read them:
//
//     dword:1      a number, decimal or 0x...
//     sz:text      UTF-8, stored as UTF-16 with its closing NUL
//     hex:0a0b     bytes
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace varkel {

std::optional<RegistryValue> ParseRegistryValue(std::string_view text);

// The same notation back. A text ends at its first NUL; a number that has not four bytes is shown as bytes.
std::string RegistryValueText(const RegistryValue& value);

}  // namespace varkel
