#include "session/sim_phonebook_answers.h"

#include <algorithm>
#include <charconv>

#include "modem/at_values.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr std::size_t digitsOfUnit = 4;
constexpr char16_t unusedByte = 0xFFFF;  // what fills a SIM's field behind its text

// Takes the text up to the first of `separators` off the front, and that separator with it.
std::string_view TakeField(std::string_view& text, std::string_view separators) {
    const std::string_view field = text.substr(0, text.find_first_of(separators));
    text.remove_prefix(std::min(field.size() + 1, text.size()));
    return field;
}

std::string_view Digits(std::string_view text) {
    const auto first = std::find_if(text.begin(), text.end(), IsDigit);
    const auto last = std::find_if_not(first, text.end(), IsDigit);
    return {first, last};
}

// Takes the text between the next two quotes off the front; nothing when there are not two.
std::optional<std::string_view> TakeQuoted(std::string_view& text) {
    const std::size_t open = text.find('"');
    if (open == std::string_view::npos) return std::nullopt;
    const std::size_t close = text.find('"', open + 1);
    if (close == std::string_view::npos) return std::nullopt;
    const std::string_view quoted = text.substr(open + 1, close - open - 1);
    text.remove_prefix(close + 1);
    return quoted;
}

bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

std::string NameFromHex(std::string_view hex) {
    const bool plain = hex.size() < digitsOfUnit || !std::all_of(hex.begin(), hex.end(), IsHexDigit);
    if (plain) return Utf8FromUtf16(Utf16FromUtf8(hex));
    std::u16string units;
    for (; hex.size() >= digitsOfUnit; hex.remove_prefix(digitsOfUnit)) {
        std::uint16_t unit = 0;
        std::from_chars(hex.data(), hex.data() + digitsOfUnit, unit, 16);
        if (unit == 0 || unit == unusedByte) break;
        units.push_back(unit);
    }
    return Utf8FromUtf16(units);
}

}  // namespace

std::optional<SimBookSize> ParseSimBookSize(std::string_view text) {
    TakeField(text, ",\n");
    SimBookSize size;
    const std::string_view used = Trimmed(TakeField(text, ",\n"));
    const std::string_view total = Digits(TakeField(text, ",\n"));
    if (!ParseInt(used, size.used) || !ParseInt(total, size.total) || size.used < 0) return std::nullopt;
    return size;
}

SimBookLimits ParseSimBookLimits(std::string_view text) {
    SimBookLimits limits;
    TakeField(text, ")\n");
    // The list of number types begins in the field of the number's length.
    std::string_view number = TakeField(text, ")\n");
    number = Digits(TakeField(number, "("));
    const std::string_view name = Digits(TakeField(text, ")\n"));
    if (!ParseInt(number, limits.number)) limits.number = 0;
    if (!ParseInt(name, limits.name)) limits.name = 0;
    return limits;
}

std::optional<SimEntry> ParseSimEntry(std::string_view line) {
    const std::size_t comma = line.find(',');
    const std::size_t colon = line.find(':');
    if (comma == std::string_view::npos || colon >= comma) return std::nullopt;
    SimEntry entry;
    const std::string_view index = Trimmed(line.substr(colon + 1, comma - colon - 1));
    if (!ParseInt(index, entry.slot) || !SimSlot::From(entry.slot)) return std::nullopt;
    line.remove_prefix(comma);
    const auto number = TakeQuoted(line);
    const auto name = TakeQuoted(line);
    if (!number || !name) return std::nullopt;
    entry.number = *number;
    entry.name = NameFromHex(*name);
    return entry;
}

}  // namespace varkel
