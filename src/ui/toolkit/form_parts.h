// What the forms of the message screens have in common: a panel at the left, buttons at the right.
#pragma once

#include "ui/toolkit/dialog_spec.h"

namespace varkel::form {

inline constexpr std::string_view directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\";
inline constexpr std::string_view background = "GroupBlackList";

// A button of the column at the right, counted from 0.
constexpr ButtonSpec Action(int place, int id, std::string_view picture, DisabledPicture disabled,
                            std::string_view caption) {
    return {.id = id,
            .rect = {612, 58 + place * 112, 180, 104},
            .picture = picture,
            .disabled = disabled,
            .caption = caption,
            .textOffset = 58};
}

constexpr ButtonSpec Exit(int id) {
    return {.id = id, .rect = {730, 0, 70, 50}, .picture = "Exit"};
}

constexpr TextSpec Label(const Rect& rect, std::string_view caption) {
    return {.rect = rect, .caption = caption, .role = TextRole::Secondary, .ground = TextGround::Static};
}

}  // namespace varkel::form
