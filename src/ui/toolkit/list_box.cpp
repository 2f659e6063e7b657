#include "ui/toolkit/list_box.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ui/toolkit/dialog.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

namespace {

constexpr int dragFrom = 12;  // pixels that a finger may tremble
constexpr int margin = 16;
constexpr auto lineFormat = TextFormat::VCenter | TextFormat::SingleLine | TextFormat::EndEllipsis;

}  // namespace

ListBox::ListBox(Dialog& parent, const ListSpec& spec)
    : Control(parent, spec.id, spec.rect), m_rowHeight(spec.rowHeight) {}

void ListBox::SetModel(ListModel model) {
    m_model = std::move(model);
    m_selected = -1;
    m_offset = 0;
    Reload();
}

void ListBox::Reload() {
    m_selected = std::min(m_selected, Count() - 1);
    SetOffset(m_offset);
    Invalidate();
}

void ListBox::SelectRow(int row) {
    m_selected = std::clamp(row, -1, Count() - 1);
    Invalidate();
    if (m_selected < 0) return;
    const int top = m_selected * m_rowHeight;
    SetOffset(std::clamp(m_offset, top + m_rowHeight - Place().height, top));
}

void ListBox::SetTopRow(int row) {
    SetOffset(std::clamp(row, 0, Count()) * m_rowHeight);
}

void ListBox::SetOffset(int offset) {
    const int most = std::max(0, Count() * m_rowHeight - Place().height);
    const int before = TopRow();
    const int shown = std::clamp(offset, 0, most);
    if (shown == m_offset) return;
    m_offset = shown;
    Invalidate();
    if (TopRow() != before && onScroll) onScroll();
}

Rect ListBox::PlaceOf(int row) const {
    return {Place().x, Place().y + row * m_rowHeight - m_offset, Place().width, m_rowHeight};
}

void ListBox::Draw(Canvas& canvas) {
    canvas.PushClip(Place());
    const int last = std::min(Count() - 1, (m_offset + Place().height - 1) / m_rowHeight);
    for (int row = TopRow(); row <= last; ++row)
        DrawRow(canvas, row);
    canvas.PopClip();
}

void ListBox::DrawRow(Canvas& canvas, int row) const {
    const Palette& palette = Parent().GetDesktop().Colors();
    const ListRow content = m_model.row(row);
    const Rect place = PlaceOf(row);
    const bool selected = row == m_selected;
    if (selected) {
        canvas.FillRect(place, palette.pressed);
    } else {
        canvas.FillRect({place.x + margin, place.Bottom() - 1, place.width - 2 * margin, 1}, palette.line);
    }

    TextStyle text = StyleOf(TextRole::Body, Parent().Colors());
    TextStyle small = StyleOf(TextRole::Secondary, Parent().Colors());
    if (content.emphasised) text.color = palette.accent;
    if (selected) text.color = small.color = palette.pressedText;

    // In languages that are read from the right everything stands the other way round.
    const bool mirrored = Parent().GetDesktop().ReadsRightToLeft();
    const auto side = [&place, mirrored](const Rect& rect) {
        return mirrored ? Mirrored(rect, place) : rect;
    };
    const TextFormat format = lineFormat | (mirrored ? TextFormat::Right : TextFormat::Left);
    const Rect inside{place.x + margin, place.y, place.width - 2 * margin, place.height};

    int left = inside.x;
    if (const Bitmap* const picture = selected ? content.selectedPicture : content.picture) {
        const Size size = picture->GetSize();
        canvas.TransparentImage(
            *picture, side({left, place.y + (place.height - size.height) / 2, size.width, size.height}),
            Rgb(0xFF, 0x00, 0xFF));
        left += size.width + margin;
    }
    // Two lines are set close to each other, with room above and below them.
    const bool twoLines = !content.detail.empty();
    const int split = place.y + (twoLines ? place.height * 7 / 12 : place.height);
    const int rim = twoLines ? place.height / 14 : 0;
    Rect first{left, place.y + rim, inside.Right() - left, split - place.y - rim};
    if (!content.note.empty()) {
        const int needed = Parent().GetDesktop().GetGraphics().MeasureText(content.note, small.font).width;
        const int width = std::min(needed, first.width / 2);
        canvas.DrawText(content.note, side({first.Right() - width, first.y, width, first.height}), format,
                        small.font, small.color);
        first.width -= width + margin;
    }
    canvas.DrawText(content.text, side(first), format, text.font, text.color);
    if (!twoLines) return;
    const Rect second{left, split, inside.Right() - left, place.Bottom() - rim - split};
    canvas.DrawText(content.detail, side(second), format, small.font, small.color);
}

void ListBox::AppendTargets(std::vector<TouchTarget>& targets) const {
    const int rows = std::min(VisibleRows(), Count() - TopRow());
    for (int row = TopRow(); row < TopRow() + rows; ++row)
        targets.push_back({Id(), Intersection(PlaceOf(row), Place())});
}

void ListBox::OnTouchDown(Point at) {
    m_down = at;
    m_downOffset = m_offset;
    m_dragging = false;
}

void ListBox::OnTouchMove(Point at) {
    if (std::abs(at.y - m_down.y) >= dragFrom) m_dragging = true;
    if (m_dragging) SetOffset(m_downOffset - (at.y - m_down.y));
}

void ListBox::OnTouchUp(Point at) {
    if (std::exchange(m_dragging, false) || !Place().Contains(at)) return;
    const int row = (at.y - Place().y + m_offset) / m_rowHeight;
    if (row >= Count()) return;
    SelectRow(row);
    if (onTap) onTap(row);
}

bool ListBox::OnKey(const KeyEvent& event) {
    switch (event.code) {
        case KeyCode::Up: SelectByKey(m_selected - 1); return true;
        case KeyCode::Down: SelectByKey(m_selected + 1); return true;
        case KeyCode::PageUp: PageUp(); return true;
        case KeyCode::PageDown: PageDown(); return true;
        case KeyCode::Home: SelectByKey(0); return true;
        case KeyCode::End: SelectByKey(Count() - 1); return true;
        default: return false;
    }
}

void ListBox::SelectByKey(int row) {
    SelectRow(std::clamp(row, 0, std::max(0, Count() - 1)));
    if (onSelect) onSelect();
}

}  // namespace varkel
