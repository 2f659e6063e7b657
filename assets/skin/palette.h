// The colours of one skin, by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace varkel::skin {

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Color&) const = default;
};

// "#RRGGBB", as style sheets have it.
std::string Hex(Color color);

// night.txt says what each is for.
struct Palette {
    Color background, bar, barButton, tile, tileOff, well, dialog, field, channel, edge, line, ring;
    Color text, secondary, accent, warning, disabled;
    Color pressed, pressedText;
    Color answer, answerPressed, hangup, hangupPressed, callText;
    Color thumb, thumbText;
    Color label, labelText, choice;

    // A key file of "name = #RRGGBB" lines that names every colour; otherwise `problem` says what is wrong.
    static std::optional<Palette> Parse(std::string_view text, std::string& problem);

    // The same colours as an initial registry's "CharacterAttr": what the unit calls the colours, sizes and
    // weights of texts on a skin.
    std::string CharacterAttr() const;
};

}  // namespace varkel::skin
