#include "ui/toolkit/palette.h"

#include <string_view>

#include "platform/color_text.h"
#include "platform/key_file.h"

namespace varkel {

namespace {

constexpr std::string_view path = "\\ResidentFlash2\\bin\\Gprs\\palette.txt";
constexpr std::size_t largestFile = 4096;

struct Name {
    std::string_view name;
    ColorRef Palette::*color;
};

constexpr Name names[] = {
    {"background", &Palette::background},
    {"bar", &Palette::bar},
    {"tile", &Palette::tile},
    {"well", &Palette::well},
    {"line", &Palette::line},
    {"edge", &Palette::edge},
    {"text", &Palette::text},
    {"secondary", &Palette::secondary},
    {"accent", &Palette::accent},
    {"warning", &Palette::warning},
    {"disabled", &Palette::disabled},
    {"pressed", &Palette::pressed},
    {"pressedText", &Palette::pressedText},
    {"answer", &Palette::answer},
    {"hangup", &Palette::hangup},
    {"callText", &Palette::callText},
    {"labelText", &Palette::labelText},
};

}  // namespace

Palette Palette::Load(UnitFiles& files) {
    Palette palette;
    const KeyFile file = KeyFile::Parse(files.ReadWhole(path, largestFile).value_or(""));
    for (const Name& entry : names) {
        const auto text = file.Find("", entry.name);
        if (const auto rgb = text ? ParseColor(*text) : std::nullopt)
            palette.*entry.color = Rgb(*rgb >> 16, *rgb >> 8 & 0xFF, *rgb & 0xFF);
    }
    return palette;
}

}  // namespace varkel
