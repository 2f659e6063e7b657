// The skin's own colours, for what the program draws without a picture. The registry's "CharacterAttr" has
// those of titles, lists, edit fields and buttons.
#pragma once

#include "platform/canvas.h"
#include "platform/unit_files.h"

namespace varkel {

struct Palette {
    ColorRef background = Rgb(0x0B, 0x0F, 0x14);
    ColorRef bar = Rgb(0x00, 0x00, 0x00);
    ColorRef tile = Rgb(0x18, 0x22, 0x2C);
    ColorRef well = Rgb(0x13, 0x1B, 0x23);  // rows of a list lie on it
    ColorRef line = Rgb(0x2B, 0x39, 0x45);  // between rows
    ColorRef edge = Rgb(0x5F, 0x73, 0x85);
    ColorRef text = Rgb(0xF2, 0xF5, 0xF7);
    ColorRef secondary = Rgb(0xAE, 0xBB, 0xC6);
    ColorRef accent = Rgb(0x4F, 0xC3, 0xF7);
    ColorRef warning = Rgb(0xF5, 0xB8, 0x3D);
    ColorRef disabled = Rgb(0x6E, 0x7C, 0x89);
    ColorRef pressed = Rgb(0x16, 0x67, 0xA0);  // and selected
    ColorRef pressedText = Rgb(0xFF, 0xFF, 0xFF);
    ColorRef answer = Rgb(0x1E, 0x7A, 0x2F);
    ColorRef hangup = Rgb(0xC6, 0x28, 0x28);
    ColorRef callText = Rgb(0xFF, 0xFF, 0xFF);   // on the two before
    ColorRef labelText = Rgb(0x10, 0x16, 0x1C);  // on the white of static labels

    // Reads the skin's "palette.txt", lines of "name = #RRGGBB"; what is missing there stays as above.
    static Palette Load(UnitFiles& files);
};

}  // namespace varkel
