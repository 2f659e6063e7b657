// Texts cut into lines that fit a width, and other work on texts that are shown.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas.h"

namespace varkel {

struct TextLine {
    std::size_t begin = 0;  // bytes of the text
    std::size_t end = 0;    // without the blank or line feed at which it was cut
};

// At least one line. A line ends at a line feed, at the last blank that fits, or, in a word that is too long,
// at a character.
std::vector<TextLine> CutIntoLines(Graphics& graphics, std::string_view text, const LogFont& font, int width);

// The line in which the caret stands before byte `position`.
std::size_t LineOf(const std::vector<TextLine>& lines, std::size_t position);

// The text with the number in place of its "%d".
std::string WithNumber(std::string text, int number);

// The character borders next to a byte position.
std::size_t NextCharacter(std::string_view text, std::size_t position);
std::size_t PreviousCharacter(std::string_view text, std::size_t position);

}  // namespace varkel
