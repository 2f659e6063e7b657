#include "simulator/message_text.h"

#include <algorithm>

#include "platform/text.h"
#include "simulator/charset.h"
#include "simulator/octet_reader.h"
#include "simulator/septets.h"

namespace varkel::sim {

namespace {

constexpr char escapeSeptet = 0x1B;

// The header of a part: its length, the element "concatenated, 8-bit reference" and that element's length,
// then reference, total, number.
constexpr std::size_t partHeader = 6;
constexpr char partHeaderLength = 5;
constexpr char partElement = 0;
constexpr char partElementLength = 3;

std::size_t SeptetsOf(std::size_t headerOctets) {
    return (headerOctets * 8 + 6) / 7;
}

unsigned FillBits(std::size_t headerOctets) {
    return static_cast<unsigned>(SeptetsOf(headerOctets) * 7 - headerOctets * 8);
}

std::string BigEndian(std::u16string_view text) {
    std::string octets;
    for (const char16_t unit : text) {
        octets += static_cast<char>(unit >> 8);
        octets += static_cast<char>(unit & 0xFF);
    }
    return octets;
}

std::u16string FromBigEndian(std::string_view octets) {
    std::u16string text;
    for (std::size_t i = 0; i + 1 < octets.size(); i += 2) {
        const auto high = static_cast<std::uint8_t>(octets[i]);
        const auto low = static_cast<std::uint8_t>(octets[i + 1]);
        text += static_cast<char16_t>(high << 8 | low);
    }
    return text;
}

// The text as septets, one byte each, or as octets.
std::optional<std::string> Symbols(std::u16string_view text, TextCoding coding) {
    switch (coding) {
        case TextCoding::SevenBit: return GsmFromUtf16(text);
        case TextCoding::EightBit: return Utf8FromUtf16(text);
        case TextCoding::Ucs2: return BigEndian(text);
    }
    return std::nullopt;
}

bool HighSurrogate(std::string_view unit) {
    return (static_cast<std::uint8_t>(unit.front()) & 0xFCu) == 0xD8;
}

// The longest beginning of at most `most` symbols that ends at a character.
std::string_view CutSymbols(std::string_view symbols, std::size_t most, TextCoding coding) {
    if (symbols.size() <= most) return symbols;
    switch (coding) {
        case TextCoding::EightBit: return CutUtf8(symbols, most);
        // An escape belongs to the septet behind it; it is itself never the second of two.
        case TextCoding::SevenBit:
            return symbols.substr(0, symbols[most - 1] == escapeSeptet ? most - 1 : most);
        case TextCoding::Ucs2: break;
    }
    const std::size_t whole = most / 2 * 2;
    return symbols.substr(0, HighSurrogate(symbols.substr(whole - 2)) ? whole - 2 : whole);
}

UserData Whole(std::string_view symbols, TextCoding coding) {
    const auto length = static_cast<std::uint8_t>(symbols.size());
    return {false, length, coding == TextCoding::SevenBit ? PackSeptets(symbols) : std::string(symbols)};
}

UserData Part(std::string_view symbols, TextCoding coding, const TextPart& part) {
    std::string octets{partHeaderLength,
                       partElement,
                       partElementLength,
                       static_cast<char>(part.reference),
                       static_cast<char>(part.total),
                       static_cast<char>(part.number)};
    const bool septets = coding == TextCoding::SevenBit;
    const std::size_t length = symbols.size() + (septets ? SeptetsOf(partHeader) : partHeader);
    octets += septets ? PackSeptets(symbols, FillBits(partHeader)) : std::string(symbols);
    return {true, static_cast<std::uint8_t>(length), std::move(octets)};
}

// The element with an 8-bit reference (0) or a 16-bit one (8), whichever comes first.
std::optional<TextPart> FindPart(std::string_view header) {
    OctetReader reader(header);
    while (const auto element = reader.Octet()) {
        const auto length = reader.Octet();
        const auto value = length ? reader.Octets(*length) : std::nullopt;
        if (!value) return std::nullopt;
        const bool eight = *element == 0 && value->size() == 3;
        if (!eight && !(*element == 8 && value->size() == 4)) continue;
        const auto at = [&value](std::size_t i) { return int{static_cast<std::uint8_t>((*value)[i])}; };
        return eight ? TextPart{at(0), at(1), at(2)} : TextPart{at(0) << 8 | at(1), at(2), at(3)};
    }
    return std::nullopt;
}

}  // namespace

TextCoding CodingOf(std::uint8_t scheme) {
    // The general group, also that of messages which delete themselves; a compressed text is data to us.
    if ((scheme & 0x80u) == 0) {
        if ((scheme & 0x20u) != 0) return TextCoding::EightBit;
        switch (scheme & 0x0Cu) {
            case 0x04: return TextCoding::EightBit;
            case 0x08: return TextCoding::Ucs2;
            default: return TextCoding::SevenBit;
        }
    }
    if ((scheme & 0xF0u) == 0xF0) return (scheme & 0x04u) != 0 ? TextCoding::EightBit : TextCoding::SevenBit;
    return (scheme & 0xF0u) == 0xE0 ? TextCoding::Ucs2 : TextCoding::SevenBit;
}

std::uint8_t SchemeOf(TextCoding coding) {
    switch (coding) {
        case TextCoding::SevenBit: return 0x00;
        case TextCoding::EightBit: return 0x04;
        case TextCoding::Ucs2: return 0x08;
    }
    return 0;
}

std::size_t UserDataOctets(TextCoding coding, std::uint8_t length) {
    return coding == TextCoding::SevenBit ? SeptetOctets(length) : length;
}

std::optional<std::vector<UserData>> UserDataOf(std::u16string_view text, TextCoding coding,
                                                std::uint8_t reference) {
    const auto symbols = Symbols(text, coding);
    if (!symbols) return std::nullopt;
    const bool septets = coding == TextCoding::SevenBit;
    const std::size_t most = septets ? longestUserData * 8 / 7 : longestUserData;
    if (symbols->size() <= most) return std::vector{Whole(*symbols, coding)};

    std::vector<std::string_view> pieces;
    const std::size_t mostInPart = most - (septets ? SeptetsOf(partHeader) : partHeader);
    for (std::string_view rest = *symbols; !rest.empty(); rest.remove_prefix(pieces.back().size())) {
        if (pieces.size() == mostParts) return std::nullopt;
        pieces.push_back(CutSymbols(rest, mostInPart, coding));
    }
    std::vector<UserData> parts;
    for (const std::string_view piece : pieces) {
        const int number = static_cast<int>(parts.size()) + 1;
        parts.push_back(Part(piece, coding, {reference, static_cast<int>(pieces.size()), number}));
    }
    return parts;
}

std::optional<DecodedText> DecodeUserData(TextCoding coding, bool header, std::uint8_t length,
                                          std::string_view octets) {
    if (octets.size() < UserDataOctets(coding, length)) return std::nullopt;
    octets = octets.substr(0, UserDataOctets(coding, length));
    DecodedText decoded;
    std::size_t headerOctets = 0;
    if (header) {
        OctetReader reader(octets);
        const auto rest = reader.Octet();
        const auto elements = rest ? reader.Octets(*rest) : std::nullopt;
        if (!elements) return std::nullopt;
        headerOctets = *rest + 1u;
        decoded.part = FindPart(*elements);
    }
    const std::string_view body = octets.substr(headerOctets);
    switch (coding) {
        case TextCoding::SevenBit: {
            const std::size_t before = SeptetsOf(headerOctets);
            if (before > length) return std::nullopt;
            const std::string septets = UnpackSeptets(body, length - before, FillBits(headerOctets));
            decoded.text = Utf8FromUtf16(Utf16FromGsm(septets));
            break;
        }
        case TextCoding::EightBit: decoded.text = body; break;
        case TextCoding::Ucs2: decoded.text = Utf8FromUtf16(FromBigEndian(body)); break;
    }
    return decoded;
}

}  // namespace varkel::sim
