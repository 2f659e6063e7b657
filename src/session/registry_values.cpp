#include "session/registry_values.h"

#include "platform/text.h"

namespace varkel {

namespace {

std::uint32_t ByteAt(const RegistryValue& value, std::size_t i) {
    return std::to_integer<std::uint32_t>(value.bytes[i]);
}

}  // namespace

std::optional<std::uint32_t> QueryDword(RegistryKey& key, std::string_view name) {
    const auto value = key.RegQueryValueEx(name);
    if (!value || value->type != RegistryType::Dword || value->bytes.size() != 4) return std::nullopt;
    return ByteAt(*value, 0) | ByteAt(*value, 1) << 8 | ByteAt(*value, 2) << 16 | ByteAt(*value, 3) << 24;
}

bool SetDword(RegistryKey& key, std::string_view name, std::uint32_t value) {
    RegistryValue dword{RegistryType::Dword, {}};
    for (const int shift : {0, 8, 16, 24})
        dword.bytes.push_back(static_cast<std::byte>(value >> shift));
    return key.RegSetValueEx(name, dword);
}

std::optional<std::string> QueryText(RegistryKey& key, std::string_view name, std::size_t limit) {
    const auto value = key.RegQueryValueEx(name);
    if (!value || value->type != RegistryType::Sz || value->bytes.size() > limit) return std::nullopt;
    std::u16string units;
    for (std::size_t i = 0; i + 1 < value->bytes.size(); i += 2) {
        const auto unit = static_cast<char16_t>(ByteAt(*value, i) | ByteAt(*value, i + 1) << 8);
        if (unit == 0) break;
        units.push_back(unit);
    }
    return Utf8FromUtf16(units);
}

RegistryValue TextValue(std::u16string_view text, std::size_t bytes) {
    RegistryValue value{RegistryType::Sz, {}};
    for (const char16_t unit : text) {
        value.bytes.push_back(static_cast<std::byte>(unit & 0xFF));
        value.bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    value.bytes.resize(bytes, std::byte{0});
    return value;
}

}  // namespace varkel
