// Numbers and texts as the registry's bytes hold them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace varkel {

// Nothing when the value is absent or no REG_DWORD of four bytes.
std::optional<std::uint32_t> QueryDword(RegistryKey& key, std::string_view name);
bool SetDword(RegistryKey& key, std::string_view name, std::uint32_t value);

// A REG_SZ of at most `limit` bytes up to its first NUL, as UTF-8; nothing when it is absent, longer or of
// another type. An odd last byte is left out.
std::optional<std::string> QueryText(RegistryKey& key, std::string_view name, std::size_t limit);

// The text as UTF-16LE in `bytes` bytes: padded with zeros, or cut.
RegistryValue TextValue(std::u16string_view text, std::size_t bytes);

}  // namespace varkel
