// Texts on the command line in the character sets of AT+CSCS (3GPP TS 27.007, 5.5; TS 23.038).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace varkel::sim {

enum class Charset { Gsm, Ucs2, Ira };

std::optional<Charset> CharsetNamed(std::string_view name);
std::string_view NameOf(Charset set);

// The default alphabet of 23.038, one byte for a septet, two for a character of the extension table.
std::u16string Utf16FromGsm(std::string_view septets);
// Nothing when a character has no place in it.
std::optional<std::string> GsmFromUtf16(std::u16string_view text);

// Four capital hexadecimal digits for each UTF-16 unit, and back; either case is read.
std::string Ucs2Hex(std::u16string_view text);
std::optional<std::u16string> FromUcs2Hex(std::string_view hex);

// A text as it stands between quotes in an answer. What the set cannot say becomes a question mark.
std::string OnLine(std::u16string_view text, Charset set);
// A text that stood between quotes in a command; nothing when it is not of that set.
std::optional<std::u16string> FromLine(std::string_view text, Charset set);

}  // namespace varkel::sim
