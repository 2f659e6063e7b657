#include "simulator/bytes.h"

#include <cstdint>

#include "platform/text.h"

namespace varkel::sim {

namespace {

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// Whether a terminal can be given the text: UTF-8 without the control characters behind 0x7F.
bool Showable(std::string_view bytes) {
    for (const char16_t unit : Utf16FromUtf8(bytes)) {
        if (unit == 0xFFFD || (unit >= 0x80 && unit < 0xA0)) return false;
    }
    return true;
}

}  // namespace

std::string HexFromBytes(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        hex += digits[byte >> 4];
        hex += digits[byte & 0xFu];
    }
    return hex;
}

std::optional<std::string> BytesFromHex(std::string_view hex) {
    if (hex.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const int high = HexValue(hex[i]);
        const int low = HexValue(hex[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

std::optional<std::string> Unescape(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const char c = text.front();
        text.remove_prefix(1);
        if (c != '\\') {
            bytes += c;
            continue;
        }
        const char kind = text.empty() ? '\0' : text.front();
        if (kind == 'x') {
            const auto byte = text.size() >= 3 ? BytesFromHex(text.substr(1, 2)) : std::nullopt;
            if (!byte) return std::nullopt;
            bytes += *byte;
            text.remove_prefix(3);
            continue;
        }
        constexpr std::string_view letters = "rnt\\\"";
        constexpr std::string_view meanings = "\r\n\t\\\"";
        const std::size_t at = text.empty() ? std::string_view::npos : letters.find(kind);
        if (at == std::string_view::npos) return std::nullopt;
        bytes += meanings[at];
        text.remove_prefix(1);
    }
    return bytes;
}

std::string Visible(std::string_view bytes, std::size_t longest) {
    std::string line;
    bool separate = false;
    const bool showable = Showable(bytes);
    for (const char c : bytes) {
        if (line.size() > longest) return std::string(CutUtf8(line, longest)) + "...";
        if (c == '\r' || c == '\n') {
            separate = true;
            continue;
        }
        if (separate && !line.empty()) line += " | ";
        separate = false;
        const auto byte = static_cast<std::uint8_t>(c);
        if (byte < 0x20 || byte == 0x7F || (byte > 0x7F && !showable)) {
            line += "\\x" + HexFromBytes({&c, 1});
        } else {
            line += c;
        }
    }
    return line.size() > longest ? std::string(CutUtf8(line, longest)) + "..." : line;
}

std::optional<std::string> TakeWord(std::string_view& text) {
    text = Trimmed(text);
    if (text.empty()) return std::nullopt;
    if (text.front() != '"') {
        const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
        const std::string word(text.substr(0, end));
        text = Trimmed(text.substr(end));
        return word;
    }
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == '"') {
            const auto word = Unescape(text.substr(1, i - 1));
            text = Trimmed(text.substr(i + 1));
            return word;
        }
    }
    return std::nullopt;
}

}  // namespace varkel::sim
