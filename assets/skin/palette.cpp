#include "assets/skin/palette.h"

#include <array>

#include "platform/color_text.h"
#include "platform/key_file.h"

namespace varkel::skin {

namespace {

struct Name {
    std::string_view name;
    Color Palette::*color;
};

constexpr Name names[] = {
    {"background", &Palette::background},
    {"bar", &Palette::bar},
    {"barButton", &Palette::barButton},
    {"tile", &Palette::tile},
    {"tileOff", &Palette::tileOff},
    {"well", &Palette::well},
    {"dialog", &Palette::dialog},
    {"field", &Palette::field},
    {"channel", &Palette::channel},
    {"edge", &Palette::edge},
    {"line", &Palette::line},
    {"ring", &Palette::ring},
    {"text", &Palette::text},
    {"secondary", &Palette::secondary},
    {"accent", &Palette::accent},
    {"warning", &Palette::warning},
    {"disabled", &Palette::disabled},
    {"pressed", &Palette::pressed},
    {"pressedText", &Palette::pressedText},
    {"answer", &Palette::answer},
    {"answerPressed", &Palette::answerPressed},
    {"hangup", &Palette::hangup},
    {"hangupPressed", &Palette::hangupPressed},
    {"callText", &Palette::callText},
    {"thumb", &Palette::thumb},
    {"thumbText", &Palette::thumbText},
    {"label", &Palette::label},
    {"labelText", &Palette::labelText},
    {"choice", &Palette::choice},
};

// The text colours of the registry.
constexpr Name attributes[] = {
    {"BtnFont", &Palette::text},   {"SubMenu", &Palette::text},  {"Edit", &Palette::text},
    {"EditBack", &Palette::field}, {"SubTitle", &Palette::text},
};

// Pixels, and 400 for regular.
constexpr std::string_view sizes =
    "SubTitleSize = dword:32\n"
    "SubTitleWeight = dword:400\n"
    "BTBtnFontSize = dword:28\n"
    "BTBtnFontWeight = dword:400\n";

}  // namespace

std::string Hex(Color color) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text = "#";
    for (const unsigned part : {color.red, color.green, color.blue}) {
        text += digits[part / 16];
        text += digits[part % 16];
    }
    return text;
}

std::optional<Palette> Palette::Parse(std::string_view text, std::string& problem) {
    const KeyFile file = KeyFile::Parse(text);
    if (!file.Errors().empty()) {
        problem = file.Errors().front();
        return std::nullopt;
    }
    Palette palette;
    for (const Name& name : names) {
        const auto rgb = ParseColor(file.Get("", name.name, ""));
        if (!rgb) {
            problem = "no colour for " + std::string(name.name);
            return std::nullopt;
        }
        palette.*name.color = {static_cast<std::uint8_t>(*rgb >> 16),
                               static_cast<std::uint8_t>(*rgb >> 8 & 0xFF),
                               static_cast<std::uint8_t>(*rgb & 0xFF)};
    }
    if (file.Entries().size() != std::size(names)) {
        problem = "a colour that has no use, or one twice";
        return std::nullopt;
    }
    return palette;
}

std::string Palette::CharacterAttr() const {
    std::string lines = "[CharacterAttr]\n";
    const auto add = [&lines](std::string_view name, std::string_view part, unsigned value) {
        lines += std::string(name) + std::string(part) + " = dword:" + std::to_string(value) + "\n";
    };
    for (const Name& attribute : attributes) {
        const Color color = this->*attribute.color;
        add(attribute.name, "Red", color.red);
        add(attribute.name, "Green", color.green);
        add(attribute.name, "Blue", color.blue);
    }
    return lines.append(sizes);
}

}  // namespace varkel::skin
