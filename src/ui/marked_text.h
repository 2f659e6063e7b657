// A picture with a text beside it, as radio items and check boxes are.
#pragma once

#include <algorithm>
#include <string_view>

#include "platform/canvas.h"
#include "ui/fonts.h"

namespace varkel {

inline void DrawMarkedText(Canvas& canvas, Graphics& graphics, const Rect& place, const Bitmap* mark,
                           std::string_view text, const TextStyle& style) {
    constexpr int gap = 10;
    int left = place.x;
    if (mark) {
        // As high as the place at most: an item may be lower than its picture.
        const Size size = mark->GetSize();
        const int height = std::min(size.height, place.height);
        const int width = size.height > 0 ? size.width * height / size.height : 0;
        canvas.StretchBlt(*mark, {left, place.y + (place.height - height) / 2, width, height});
        left += width + gap;
    }
    const Rect box{left, place.y, place.Right() - left, place.height};
    const LogFont font = FittingFont(graphics, text, style.font, {box.width, box.height}, false);
    canvas.DrawText(text, box, TextFormat::VCenter | TextFormat::SingleLine | TextFormat::EndEllipsis, font,
                    style.color);
}

}  // namespace varkel
