#include "ui/toolkit/static_text.h"

#include "ui/toolkit/dialog.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

namespace {

constexpr ColorRef white = 0xFFFFFF;
constexpr int labelMargin = 8;

constexpr TextFormat OtherSide(TextFormat format) {
    return static_cast<TextFormat>(static_cast<unsigned>(format) ^ static_cast<unsigned>(TextFormat::Right));
}

}  // namespace

StaticText::StaticText(Dialog& parent, const TextSpec& spec)
    : Control(parent, spec.id, spec.rect),
      m_format(spec.format),
      m_whiteGround(spec.ground == TextGround::Static && !parent.Spec().edits.empty()),
      m_text(parent.LoadText(spec.caption)) {
    const TextStyle style = StyleOf(spec.role, parent.Colors());
    m_font = style.font;
    m_color = m_whiteGround ? parent.GetDesktop().Colors().labelText : style.color;
    if (!parent.GetDesktop().ReadsRightToLeft()) return;
    const bool moves = !spec.mirroredIn.Empty();
    if (moves) MoveWindow(Mirrored(spec.rect, spec.mirroredIn));
    const bool centred = Has(m_format, TextFormat::Center);
    if (!centred && (moves || !Has(m_format, TextFormat::Right))) m_format = OtherSide(m_format);
}

void StaticText::SetWindowText(std::string_view text) {
    if (m_text == text) return;
    m_text = text;
    Invalidate();
}

void StaticText::SetFont(const LogFont& font) {
    m_font = font;
    Invalidate();
}

void StaticText::SetTextColor(ColorRef color) {
    m_color = color;
    Invalidate();
}

void StaticText::Draw(Canvas& canvas) {
    Rect box = Place();
    if (m_whiteGround) {
        canvas.FillRect(box, white);
        box.x += labelMargin;
        box.width -= 2 * labelMargin;
    }
    const bool breaks = Has(m_format, TextFormat::WordBreak);
    const LogFont font =
        FittingFont(Parent().GetDesktop().GetGraphics(), m_text, m_font, {box.width, box.height}, breaks);
    canvas.DrawText(m_text, box, breaks ? m_format : m_format | TextFormat::EndEllipsis, font, m_color);
}

}  // namespace varkel
