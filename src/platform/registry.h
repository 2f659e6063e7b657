// The unit's registry: keys with named, typed values, shared with the other programs of the unit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace varkel {

// The numbers are those of REG_SZ, REG_BINARY and REG_DWORD.
enum class RegistryType : std::uint32_t { Sz = 1, Binary = 3, Dword = 4 };

// The bytes stand as they were written: a REG_SZ is UTF-16LE of any length, an odd one included.
struct RegistryValue {
    RegistryType type = RegistryType::Binary;
    std::vector<std::byte> bytes;

    bool operator==(const RegistryValue&) const = default;
};

// An open key; the destructor is RegCloseKey. Any thread.
class RegistryKey {
  public:
    virtual ~RegistryKey() = default;
    // Nothing when the value is absent or cannot be read.
    virtual std::optional<RegistryValue> RegQueryValueEx(std::string_view name) = 0;
    virtual bool RegSetValueEx(std::string_view name, const RegistryValue& value) = 0;
};

// Key paths lie under HKEY_LOCAL_MACHINE and, like value names, are compared without regard to ASCII case; a
// trailing backslash means nothing. Any thread.
class Registry {
  public:
    virtual ~Registry() = default;

    // Opens the key, or makes it; `created` tells which. Null when neither is possible.
    virtual std::unique_ptr<RegistryKey> RegCreateKeyEx(std::string_view key, bool& created) = 0;
    // Everything written so far is on the disk when this returns true.
    virtual bool RegFlushKey() = 0;

    static constexpr std::size_t longestName = 255;
    static constexpr std::size_t largestValue = 64 * 1024;  // bytes
};

}  // namespace varkel
