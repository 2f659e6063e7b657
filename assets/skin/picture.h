// What a picture of the skin is: its file, its size, and how it is drawn.
#pragma once

#include <string_view>

#include "assets/skin/painter.h"

namespace varkel::skin {

enum class State { Normal, Sel, Disabled, SelDisabled };

// Which files a base name stands for.
enum class Files {
    One,      // Name
    Sel,      // NameSel: the normal look is a part of a background
    Two,      // Name, NameSel
    Dis,      // Name, NameSel, NameDis
    Disable,  // Name, NameSel, NameDisable
    Option,   // Name, NameSel, NameDisable, NameSelDisable: off, on, and both out of reach
    Tab,      // Name1, NameSel1
};

// What a button does, as far as its colour tells.
enum class Tone { Plain, Answer, HangUp };

// What a picture will lie on. A keyed one is shown by TransparentImage: it is magenta where nothing is drawn.
struct Ground {
    Color Palette::*normal;
    Color Palette::*sel;
    bool keyed = false;
};

constexpr Ground onBackground{&Palette::background, &Palette::background};
constexpr Ground onPanel{&Palette::well, &Palette::well};
constexpr Ground onDialog{&Palette::dialog, &Palette::dialog};
constexpr Ground onChannel{&Palette::channel, &Palette::channel};
constexpr Ground onLabel{&Palette::label, &Palette::label};
constexpr Ground onBar{&Palette::bar, &Palette::bar};
constexpr Ground keyedOnBar{&Palette::bar, &Palette::bar, true};
constexpr Ground keyedOnTile{&Palette::tile, &Palette::pressed, true};
constexpr Ground keyedOnRow{&Palette::well, &Palette::pressed, true};

struct Detail {
    const char* icon = "";
    Tone tone = Tone::Plain;
    Ground ground = onBackground;
    int level = 0;
};

struct Picture;
using Draw = void (*)(Painter& painter, const Palette& colors, const Picture& picture, State state);

struct Picture {
    std::string_view name;  // below Gprs, without suffix and ".bmp"
    Files files = Files::One;
    Size size;
    Draw draw;
    Detail detail = {};
};

// How something that can be touched looks.
struct Look {
    Color face;
    Edge edge;
    IconColors icon;
};

Look LookOf(Tone tone, State state, const Palette& colors);

}  // namespace varkel::skin
