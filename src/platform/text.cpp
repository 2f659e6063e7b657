#include "platform/text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace varkel {

namespace {

constexpr char32_t replacement = 0xFFFD;

// Takes one character off the front of `text`; an ill-formed byte counts as one character.
char32_t TakeUtf8(std::string_view& text) {
    const auto byteAt = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t first = byteAt(0);
    std::size_t length = 1;
    char32_t smallest = 0;
    char32_t character = first;
    if (first >= 0x80) {
        if (first >= 0xC2 && first <= 0xDF) {
            length = 2, smallest = 0x80, character = first & 0x1Fu;
        } else if (first >= 0xE0 && first <= 0xEF) {
            length = 3, smallest = 0x800, character = first & 0x0Fu;
        } else if (first >= 0xF0 && first <= 0xF4) {
            length = 4, smallest = 0x10000, character = first & 0x07u;
        } else {
            text.remove_prefix(1);
            return replacement;
        }
    }
    bool wellFormed = text.size() >= length;
    for (std::size_t i = 1; wellFormed && i < length; ++i) {
        wellFormed = (byteAt(i) & 0xC0u) == 0x80u;
        character = (character << 6) | (byteAt(i) & 0x3Fu);
    }
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (!wellFormed || character < smallest || surrogate || character > 0x10FFFF) {
        text.remove_prefix(1);
        return replacement;
    }
    text.remove_prefix(length);
    return character;
}

void AppendUtf8(std::string& text, char32_t character) {
    const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | (character >> 6));
        put(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3F));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool Blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

std::u16string Utf16FromUtf8(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const char32_t character = TakeUtf8(text);
        if (character < 0x10000) {
            units.push_back(static_cast<char16_t>(character));
        } else {
            units.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        }
    }
    return units;
}

std::string Utf8FromUtf16(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        const bool pair = high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
        if (pair) {
            AppendUtf8(bytes, 0x10000 + ((unit - 0xD800) << 10) + (char32_t{text[++i]} - 0xDC00));
        } else {
            AppendUtf8(bytes, unit >= 0xD800 && unit <= 0xDFFF ? replacement : unit);
        }
    }
    return bytes;
}

std::size_t FirstCharacterBytes(std::string_view text) {
    const std::size_t whole = text.size();
    TakeUtf8(text);
    return whole - text.size();
}

std::string_view CutUtf8(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    std::size_t end = bytes;
    while (end > 0 && bytes - end < 3 && (static_cast<std::uint8_t>(text[end]) & 0xC0u) == 0x80u)
        --end;
    return text.substr(0, end);
}

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

std::string FoldCase(std::string_view text) {
    constexpr auto within = [](char16_t unit, char16_t first, char16_t last) {
        return unit >= first && unit <= last;
    };
    std::u16string units = Utf16FromUtf8(text);
    for (char16_t& unit : units) {
        const bool capital = within(unit, u'A', u'Z') || within(unit, 0xC0, 0xDE) ||
                             within(unit, 0x391, 0x3A9) || within(unit, 0x410, 0x42F);
        if (capital && unit != 0xD7) unit = static_cast<char16_t>(unit + 0x20);
        if (within(unit, 0x400, 0x40F)) unit = static_cast<char16_t>(unit + 0x50);
    }
    return Utf8FromUtf16(units);
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && Blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && Blank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool ParseInt(std::string_view text, int& value) {
    return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

}  // namespace varkel
