#include "platform/linux/initial_registry.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

#include "platform/key_file.h"
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

std::optional<RegistryValue> ParseValue(std::string_view text) {
    for (const Notation& notation : notations) {
        if (EqualIgnoringCase(text.substr(0, notation.prefix.size()), notation.prefix))
            return notation.parse(text.substr(notation.prefix.size()));
    }
    return std::nullopt;
}

// What is wrong with the entry; "" when it was written or stood there already.
std::string_view Load(Registry& registry, const KeyFile::Entry& entry) {
    if (entry.section.empty()) return "a value without a key";
    const auto value = ParseValue(entry.value);
    if (!value) return "not dword:, sz: or hex: with a value of that kind";
    bool created = false;
    const auto key = registry.RegCreateKeyEx(entry.section, created);
    if (!key) return "the key cannot be made";
    if (key->RegQueryValueEx(entry.key) || key->RegSetValueEx(entry.key, *value)) return {};
    return "the value cannot be written";
}

}  // namespace

std::vector<std::string> LoadInitialRegistry(Registry& registry, std::string_view text) {
    const KeyFile file = KeyFile::Parse(text);
    std::vector<std::string> problems;
    // Of two lines for one value the later one holds, so it comes first.
    for (auto entry = file.Entries().rbegin(); entry != file.Entries().rend(); ++entry) {
        const std::string_view problem = Load(registry, *entry);
        if (problem.empty()) continue;
        problems.push_back("line " + std::to_string(entry->line) + ": " + std::string(problem));
    }
    std::reverse(problems.begin(), problems.end());
    problems.insert(problems.begin(), file.Errors().begin(), file.Errors().end());
    return problems;
}

}  // namespace varkel
