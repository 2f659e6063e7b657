#include "ui/toolkit/marked_text.h"

#include <algorithm>
#include <string>

#include "ui/toolkit/dialog.h"

namespace varkel {

MarkPictures::MarkPictures(Dialog& parent, std::string_view name) {
    // A number at the end of the name stays there.
    const std::size_t letters = name.find_last_not_of("0123456789") + 1;
    const std::string_view number = name.substr(letters);
    for (const bool selected : {false, true}) {
        for (const bool disabled : {false, true}) {
            std::string file(name.substr(0, letters));
            file.append(selected ? "Sel" : "").append(disabled ? "Disable" : "").append(number);
            m_pictures[selected][disabled] = parent.LoadPicture(file);
        }
    }
}

const Bitmap* MarkPictures::Get(bool selected, bool enabled) const {
    const Bitmap* const disabled = m_pictures[selected][1];
    return enabled || !disabled ? m_pictures[selected][0] : disabled;
}

void DrawMarkedText(Canvas& canvas, const Desktop& desktop, const Rect& place, const Bitmap* mark,
                    std::string_view text, const TextStyle& style) {
    constexpr int gap = 10;
    const bool mirrored = desktop.ReadsRightToLeft();
    const auto side = [&place, mirrored](const Rect& rect) {
        return mirrored ? Mirrored(rect, place) : rect;
    };
    int left = place.x;
    if (mark) {
        const Size size = mark->GetSize();
        const int height = std::min(size.height, place.height);
        const int width = size.height > 0 ? size.width * height / size.height : 0;
        canvas.StretchBlt(*mark, side({left, place.y + (place.height - height) / 2, width, height}));
        left += width + gap;
    }
    const Rect box = side({left, place.y, place.Right() - left, place.height});
    const LogFont font = FittingFont(desktop.GetGraphics(), text, style.font, {box.width, box.height}, false);
    const TextFormat begin = mirrored ? TextFormat::Right : TextFormat::Left;
    canvas.DrawText(text, box, begin | TextFormat::VCenter | TextFormat::SingleLine | TextFormat::EndEllipsis,
                    font, style.color);
}

}  // namespace varkel
