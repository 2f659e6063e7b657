// UTF-8 and UTF-16, and cuts that never split a character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace varkel {

// Ill-formed input becomes U+FFFD, one for each byte or unit that fits nowhere.
std::u16string Utf16FromUtf8(std::string_view text);
std::string Utf8FromUtf16(std::u16string_view text);

// How many bytes the first character of a text has, which is not empty; an ill-formed byte is one by itself.
std::size_t FirstCharacterBytes(std::string_view text);

// The longest beginning of `text` that has at most `bytes` bytes and ends at a character.
std::string_view CutUtf8(std::string_view text, std::size_t bytes);

// ASCII only; every other byte stays.
std::string LowerAscii(std::string_view text);
// A form that is the same for capital and small letters, of Latin, Greek and Cyrillic: texts are searched in
// it.
std::string FoldCase(std::string_view text);
bool EqualIgnoringCase(std::string_view a, std::string_view b);
// Without the blanks (space, tab, CR, LF) at both ends.
std::string_view Trimmed(std::string_view text);

// Reads the decimal number that the text begins with; false when no digit stands there or the number does not
// fit.
bool ParseInt(std::string_view text, int& value);

}  // namespace varkel
