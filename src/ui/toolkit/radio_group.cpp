#include "ui/toolkit/radio_group.h"

#include <algorithm>

#include "ui/toolkit/dialog.h"

namespace varkel {

RadioGroup::RadioGroup(Dialog& parent, const RadioSpec& spec)
    : Control(parent, spec.id, spec.rect),
      m_item(spec.item),
      m_look(spec.look),
      m_pictures(parent, spec.picture),
      m_style(StyleOf(spec.role, parent.Colors())) {
    for (const std::string_view caption : spec.captions)
        m_texts.push_back(parent.LoadText(caption));
}

void RadioGroup::Select(int item) {
    if (m_selected == item) return;
    m_selected = item;
    Invalidate();
}

void RadioGroup::SetTextStyle(const TextStyle& style) {
    m_style = style;
    Invalidate();
}

Rect RadioGroup::PlaceOf(int item) const {
    const int columns = std::max(1, Place().width / m_item.width);
    const Rect place{Place().x + item % columns * m_item.width, Place().y + item / columns * m_item.height,
                     m_item.width, m_item.height};
    // Tabs keep their order, which other controls share.
    const bool mirrored = m_look == RadioLook::Mark && Parent().GetDesktop().ReadsRightToLeft();
    return mirrored ? Mirrored(place, Place()) : place;
}

int RadioGroup::ItemAt(Point at) const {
    int reached = -1;
    for (int item = 0; item < static_cast<int>(m_texts.size()); ++item) {
        const Rect place = PlaceOf(item);
        if (place.Contains(at)) return item;
        if (reached < 0 && FingerSized(place).Contains(at)) reached = item;
    }
    return reached;
}

void RadioGroup::Draw(Canvas& canvas) {
    for (int item = 0; item < static_cast<int>(m_texts.size()); ++item)
        DrawItem(canvas, item);
}

void RadioGroup::DrawItem(Canvas& canvas, int item) const {
    Graphics& graphics = Parent().GetDesktop().GetGraphics();
    Rect place = PlaceOf(item);
    const std::string& text = m_texts[static_cast<std::size_t>(item)];
    const bool selected = item == m_selected;
    const Bitmap* const picture = m_pictures.Get(selected, IsWindowEnabled());
    TextStyle style = m_style;
    if (!IsWindowEnabled()) style.color = SkinColors::disabled;
    if (m_look == RadioLook::Mark) {
        DrawMarkedText(canvas, Parent().GetDesktop(), place, picture, text, style);
        return;
    }
    if (picture) {
        // A smaller picture leaves a gap to the next item.
        place.width = std::min(place.width, picture->GetSize().width);
        place.height = std::min(place.height, picture->GetSize().height);
        canvas.StretchBlt(*picture, place);
    }
    if (selected) style.color = Parent().GetDesktop().Colors().pressedText;
    const Rect box = place.Inset(4);
    LogFont font = FittingFont(graphics, text, style.font, {box.width, box.height}, false);
    auto format = TextFormat::Center | TextFormat::VCenter;
    // What does not fit one line has as many as there is room for.
    if (graphics.MeasureText(text, font).width > box.width) {
        font = FittingFont(graphics, text, style.font, {box.width, box.height}, true);
        format = format | TextFormat::WordBreak;
    } else {
        format = format | TextFormat::SingleLine;
    }
    canvas.DrawText(text, box, format, font, style.color);
}

void RadioGroup::AppendTargets(std::vector<TouchTarget>& targets) const {
    for (int item = 0; item < static_cast<int>(m_texts.size()); ++item)
        targets.push_back({Id(), FingerSized(PlaceOf(item))});
}

void RadioGroup::OnTouchDown(Point at) {
    m_pressed = ItemAt(at);
}

void RadioGroup::OnTouchUp(Point at) {
    const int item = ItemAt(at);
    if (item < 0 || item != m_pressed || item == m_selected) return;
    Select(item);
    Parent().Click(Id());
}

}  // namespace varkel
