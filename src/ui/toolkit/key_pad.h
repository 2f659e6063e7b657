// The keys of a pad among the buttons of a dialog: a key types its caption, which is one character.
#pragma once

#include <span>
#include <string_view>

#include "ui/toolkit/dialog_spec.h"

namespace varkel {

constexpr bool IsPadKey(const ButtonSpec& button) {
    return button.caption.size() == 1;
}

// The id of the key that types that character, as a keyboard does; noId when the pad has none.
constexpr int PadKeyOf(std::span<const ButtonSpec> buttons, char character) {
    for (const ButtonSpec& button : buttons) {
        if (IsPadKey(button) && button.caption.front() == character) return button.id;
    }
    return noId;
}

}  // namespace varkel
