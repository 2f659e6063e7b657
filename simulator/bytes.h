// Bytes as people write and read them: hexadecimal, escapes, one visible line.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace varkel::sim {

// Capital digits.
std::string HexFromBytes(std::string_view bytes);
// Reads either case; nothing when the text is not whole pairs of hexadecimal digits.
std::optional<std::string> BytesFromHex(std::string_view hex);

// Understands \r \n \t \\ \" and \xHH; nothing when a backslash begins anything else.
std::optional<std::string> Unescape(std::string_view text);

// One line of at most `longest` characters: line ends become " | " where they separate something, other
// control bytes \xHH, and so do all bytes above 0x7F unless the whole is UTF-8.
std::string Visible(std::string_view bytes, std::size_t longest = 200);

// Takes the next word off the front of `text`, or "a text in quotes" with its escapes undone. Nothing when
// there is none, or a quote stays open.
std::optional<std::string> TakeWord(std::string_view& text);

}  // namespace varkel::sim
