// Narrow text: the form in which records, registry values and other programs keep what people wrote.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace varkel {

// A narrow character set of one or more bytes a character, ASCII being part of it. Both conversions stop
// before the first character that the output has no room for, so that a cut never splits a character; neither
// allocates. Any thread.
class CodePage {
  public:
    virtual ~CodePage() = default;

    // Returns the number of units written. A byte that fits nowhere becomes U+FFFD.
    virtual std::size_t MultiByteToWideChar(std::string_view narrow, std::span<char16_t> wide) const = 0;
    // Returns the number of bytes written. A character that the page does not hold becomes "?", and so does
    // half a surrogate pair.
    virtual std::size_t WideCharToMultiByte(std::u16string_view wide, std::span<char> narrow) const = 0;
    // The number of bytes of the first character; 1 for a byte that fits nowhere, 0 for an empty text.
    virtual std::size_t CharNext(std::string_view narrow) const = 0;

    // The most bytes that one unit can become.
    static constexpr std::size_t bytesPerUnit = 4;
};

// The longest beginning of `narrow` that has at most `limit` bytes and ends at a character.
std::string_view CutNarrow(const CodePage& page, std::string_view narrow, std::size_t limit);

// The text that people see, and back. What is longer than `limit` bytes is cut at a character.
std::string Utf8FromNarrow(const CodePage& page, std::string_view narrow);
std::string NarrowFromUtf8(const CodePage& page, std::string_view utf8,
                           std::size_t limit = std::string_view::npos);

}  // namespace varkel
