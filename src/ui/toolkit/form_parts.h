// What screens with forms and lists have in common: a panel or rows at the left, buttons at the right.
#pragma once

#include "ui/toolkit/dialog_spec.h"

namespace varkel::form {

inline constexpr std::string_view directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\";
inline constexpr std::string_view background = "GroupBlackList";
inline constexpr std::string_view listBackground = "MessageCallrecordInterface";
inline constexpr int captionOffset = 58;  // of a button below its picture

// A button of the column at the right.
constexpr ButtonSpec ActionAt(int top, int id, std::string_view picture, DisabledPicture disabled,
                              std::string_view caption) {
    return {.id = id,
            .rect = {612, top, 180, 104},
            .picture = picture,
            .disabled = disabled,
            .caption = caption,
            .textOffset = captionOffset};
}
// In its place, counted from 0.
constexpr ButtonSpec Action(int place, int id, std::string_view picture, DisabledPicture disabled,
                            std::string_view caption) {
    return ActionAt(58 + place * 112, id, picture, disabled, caption);
}
constexpr ButtonSpec Save(int id) {
    return Action(0, id, "ItemSave", DisabledPicture::Dis, "IDS_SAVE");
}

// A list's large buttons, at the foot of the column.
constexpr ButtonSpec PageUp(int id) {
    return {.id = id, .rect = {612, 394, 88, 80}, .picture = "PageUp", .disabled = DisabledPicture::Dis};
}
constexpr ButtonSpec PageDown(int id) {
    return {.id = id, .rect = {704, 394, 88, 80}, .picture = "PageDown", .disabled = DisabledPicture::Dis};
}

constexpr ButtonSpec Exit(int id) {
    return {.id = id, .rect = {730, 0, 70, 50}, .picture = "Exit"};
}

// In the bar, where the two change sides in a language that is read from the right.
inline constexpr Rect titleBar{14, 0, 702, 50};
constexpr TextSpec ListTitle(int id, std::string_view caption) {
    return {.id = id,
            .rect = {14, 0, 506, 50},
            .caption = caption,
            .role = TextRole::Title,
            .mirroredIn = titleBar};
}
constexpr TextSpec Counter(int id) {
    return {.id = id,
            .rect = {530, 0, 186, 50},
            .role = TextRole::Secondary,
            .format = TextFormat::Right | TextFormat::VCenter | TextFormat::SingleLine,
            .mirroredIn = titleBar};
}

constexpr TextSpec Label(const Rect& rect, std::string_view caption) {
    return {.rect = rect, .caption = caption, .role = TextRole::Secondary, .ground = TextGround::Static};
}

}  // namespace varkel::form
