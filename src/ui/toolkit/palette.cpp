#include "ui/toolkit/palette.h"

#include <charconv>
#include <string_view>

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

bool ParseColor(std::string_view text, ColorRef& color) {
    if (text.size() != 7 || text[0] != '#') return false;
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 7, value, 16);
    if (error != std::errc() || end != text.data() + 7) return false;
    color = Rgb(value >> 16, value >> 8 & 0xFF, value & 0xFF);
    return true;
}

}  // namespace

Palette Palette::Load(UnitFiles& files) {
    Palette palette;
    const KeyFile file = KeyFile::Parse(files.ReadWhole(path, largestFile).value_or(""));
    for (const Name& entry : names) {
        if (const auto text = file.Find("", entry.name)) ParseColor(*text, palette.*entry.color);
    }
    return palette;
}

}  // namespace varkel
