#include "platform/linux/registry_text.h"

#include <charconv>
#include <cstdint>

#include "platform/text.h"

namespace varkel {

namespace {

template <class Number>
std::optional<Number> WholeNumber(std::string_view digits, int base) {
    Number number{};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

std::optional<RegistryValue> Dword(std::string_view text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const auto number =
        hex ? WholeNumber<std::uint32_t>(text.substr(2), 16) : WholeNumber<std::uint32_t>(text, 10);
    if (!number) return std::nullopt;
    RegistryValue value{RegistryType::Dword, {}};
    for (unsigned shift = 0; shift < 32; shift += 8)
        value.bytes.push_back(static_cast<std::byte>(*number >> shift));
    return value;
}

std::optional<RegistryValue> Sz(std::string_view text) {
    RegistryValue value{RegistryType::Sz, {}};
    std::u16string units = Utf16FromUtf8(text);
    units.push_back(u'\0');
    for (const char16_t unit : units) {
        value.bytes.push_back(static_cast<std::byte>(unit & 0xFF));
        value.bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    return value;
}

std::optional<RegistryValue> Hex(std::string_view text) {
    if (text.size() % 2 != 0) return std::nullopt;
    RegistryValue value{RegistryType::Binary, {}};
    for (; !text.empty(); text.remove_prefix(2)) {
        const auto byte = WholeNumber<std::uint8_t>(text.substr(0, 2), 16);
        if (!byte) return std::nullopt;
        value.bytes.push_back(static_cast<std::byte>(*byte));
    }
    return value;
}

struct Notation {
    std::string_view prefix;
    std::optional<RegistryValue> (*parse)(std::string_view);
};

constexpr Notation notations[] = {{"dword:", Dword}, {"sz:", Sz}, {"hex:", Hex}};

std::uint32_t ByteAt(const RegistryValue& value, std::size_t i) {
    return std::to_integer<std::uint32_t>(value.bytes[i]);
}

std::string DwordText(const RegistryValue& value) {
    return "dword:" + std::to_string(ByteAt(value, 0) | ByteAt(value, 1) << 8 | ByteAt(value, 2) << 16 |
                                     ByteAt(value, 3) << 24);
}

// An odd byte at the end is half a terminator.
std::string SzText(const RegistryValue& value) {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < value.bytes.size(); i += 2)
        units.push_back(static_cast<char16_t>(ByteAt(value, i) | ByteAt(value, i + 1) << 8));
    return "sz:" + Utf8FromUtf16(std::u16string_view(units).substr(0, units.find(u'\0')));
}

std::string HexText(const RegistryValue& value) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text = "hex:";
    for (const std::byte byte : value.bytes) {
        text += digits[std::to_integer<std::size_t>(byte >> 4)];
        text += digits[std::to_integer<std::size_t>(byte & std::byte{15})];
    }
    return text;
}

}  // namespace

std::optional<RegistryValue> ParseRegistryValue(std::string_view text) {
    for (const Notation& notation : notations) {
        if (EqualIgnoringCase(text.substr(0, notation.prefix.size()), notation.prefix))
            return notation.parse(text.substr(notation.prefix.size()));
    }
    return std::nullopt;
}

std::string RegistryValueText(const RegistryValue& value) {
    if (value.type == RegistryType::Sz) return SzText(value);
    return value.type == RegistryType::Dword && value.bytes.size() == 4 ? DwordText(value) : HexText(value);
}

}  // namespace varkel
