// A message's text as user data: the three codings, and long texts in parts (3GPP TS 23.040, 9.2.3.24).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varkel::sim {

// Octets of one message, its header included.
inline constexpr std::size_t longestUserData = 140;
// Of one text; 10 x 153 characters of the default alphabet, 10 x 67 others.
inline constexpr std::size_t mostParts = 10;

enum class TextCoding { SevenBit, EightBit, Ucs2 };

// By the data coding scheme of TS 23.038, 4; what is reserved reads as seven bits.
TextCoding CodingOf(std::uint8_t scheme);
std::uint8_t SchemeOf(TextCoding coding);

// Which part of a long text a message is.
struct TextPart {
    int reference = 0;
    int total = 1;
    int number = 1;

    bool operator==(const TextPart&) const = default;
};

struct UserData {
    bool header = false;      // begins with one
    std::uint8_t length = 0;  // as the message states it: septets or octets, with the header
    std::string octets;
};

// The user data of one message, or of each part when the text does not fit one. A part is never cut inside a
// character. Nothing when there would be more than `mostParts`, or the coding has no place for a character.
std::optional<std::vector<UserData>> UserDataOf(std::u16string_view text, TextCoding coding,
                                                std::uint8_t reference);

struct DecodedText {
    std::string text;  // UTF-8; the bytes as they are when they are 8-bit data
    std::optional<TextPart> part;
};

// Nothing when `octets` are fewer than `length` needs, or the header does not fit into them.
std::optional<DecodedText> DecodeUserData(TextCoding coding, bool header, std::uint8_t length,
                                          std::string_view octets);

// How many octets that length stands for.
std::size_t UserDataOctets(TextCoding coding, std::uint8_t length);

}  // namespace varkel::sim
