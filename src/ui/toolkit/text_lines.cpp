#include "ui/toolkit/text_lines.h"

#include <algorithm>
#include <cstdint>

#include "platform/text.h"

namespace varkel {

namespace {

bool Continues(char byte) {
    return (static_cast<std::uint8_t>(byte) & 0xC0u) == 0x80u;
}

// How many bytes of a text without line feeds fit the width; at least one character.
std::size_t FittingBytes(Graphics& graphics, std::string_view text, const LogFont& font, int width) {
    const auto fits = [&](std::size_t bytes) {
        return graphics.MeasureText(text.substr(0, bytes), font).width <= width;
    };
    if (fits(text.size())) return text.size();
    std::size_t fitting = NextCharacter(text, 0);
    std::size_t tooMany = text.size();
    for (;;) {
        std::size_t middle = fitting + (tooMany - fitting) / 2;
        while (middle > fitting && Continues(text[middle]))
            --middle;
        if (middle == fitting) middle = NextCharacter(text, fitting);
        if (middle >= tooMany) return fitting;
        (fits(middle) ? fitting : tooMany) = middle;
    }
}

}  // namespace

std::string WithNumber(std::string text, int number) {
    const std::size_t place = text.find("%d");
    return place == std::string::npos ? text : text.replace(place, 2, std::to_string(number));
}

std::size_t NextCharacter(std::string_view text, std::size_t position) {
    if (position >= text.size()) return text.size();
    return position + FirstCharacterBytes(text.substr(position));
}

std::size_t PreviousCharacter(std::string_view text, std::size_t position) {
    if (position == 0) return 0;
    --position;
    while (position > 0 && Continues(text[position]))
        --position;
    return position;
}

std::vector<TextLine> CutIntoLines(Graphics& graphics, std::string_view text, const LogFont& font,
                                   int width) {
    std::vector<TextLine> lines;
    std::size_t begin = 0;
    for (;;) {
        const std::string_view paragraph = text.substr(begin, text.substr(begin).find('\n'));
        const std::size_t fitting = FittingBytes(graphics, paragraph, font, width);
        if (fitting == paragraph.size()) {
            lines.push_back({begin, begin + fitting});
            begin += fitting + 1;
            if (begin > text.size()) return lines;
            continue;
        }
        const std::size_t blank = paragraph.substr(0, fitting + 1).rfind(' ');
        const bool atBlank = blank != std::string_view::npos && blank > 0;
        lines.push_back({begin, begin + (atBlank ? blank : fitting)});
        begin = lines.back().end + (atBlank ? 1 : 0);
    }
}

std::size_t LineOf(const std::vector<TextLine>& lines, std::size_t position) {
    const auto after = std::find_if(lines.begin(), lines.end(),
                                    [position](const TextLine& line) { return line.begin > position; });
    return after == lines.begin() ? 0 : static_cast<std::size_t>(after - lines.begin()) - 1;
}

}  // namespace varkel
