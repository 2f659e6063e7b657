// The fonts and colours that texts are shown in.
#pragma once

#include <string_view>

#include "platform/canvas.h"
#include "session/settings.h"

namespace varkel {

// What a text is for decides how it looks.
enum class TextRole {
    Title,       // sub-title font and colour
    Body,        // lists and labels
    Secondary,   // what stands below or beside them
    Button,      // captions of buttons
    Key,         // captions of the keys of a pad
    Caller,      // who calls, in the size that is his
    CallerName,  // who calls, once more
    Digits,      // a number that is being dialled
};

struct TextStyle {
    LogFont font;
    ColorRef color = 0;
};

// "SimSun & NSimSun" in bold, the face of dialog texts, and "黑体" in bold.
LogFont DialogFont(int height);
LogFont HeiFont(int height);

TextStyle StyleOf(TextRole role, const SkinColors& colors);

// The same font, as high as it may be for the text to fit the box in one line, or in several when they may
// break; never lower than `smallestFont`, the smallest that can be read at arm's length.
LogFont FittingFont(Graphics& graphics, std::string_view text, const LogFont& font, Size box, bool breaks);

inline constexpr int smallestFont = 22;

}  // namespace varkel
