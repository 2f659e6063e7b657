#include "ui/toolkit/skin_button.h"

#include <utility>

#include "ui/toolkit/dialog.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

namespace {

constexpr unsigned stateMask = 21;
constexpr int margin = 4;   // between caption and edge
constexpr int frame = 3;    // around the one that keys go to
constexpr int radius = 12;  // of a plain button
constexpr auto captionFormat = TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine;

std::string Suffixed(std::string_view name, std::string_view suffix) {
    return std::string(name).append(suffix);
}

const char* SuffixOf(DisabledPicture disabled) {
    switch (disabled) {
        case DisabledPicture::Sel: return "Sel";
        case DisabledPicture::Disable: return "Disable";
        case DisabledPicture::Dis: return "Dis";
    }
    return "";
}

}  // namespace

CSkinButton::CSkinButton(Dialog& parent, int id, const Rect& placeInDialog, std::string caption)
    : Control(parent, id, placeInDialog), m_text(std::move(caption)) {}

CSkinButton::CSkinButton(Dialog& parent, const ButtonSpec& spec)
    : CSkinButton(parent, spec.id, spec.rect, parent.LoadText(spec.caption)) {
    if (!spec.picture.empty()) {
        Attach(parent.LoadPicture(spec.picture), parent.LoadPicture(Suffixed(spec.picture, "Sel")),
               parent.LoadPicture(Suffixed(spec.picture, SuffixOf(spec.disabled))));
    }
    const TextStyle style = StyleOf(spec.role, parent.Colors());
    SetTextColors(style.color, parent.GetDesktop().Colors().pressedText);
    SetTextOffset(spec.textOffset);
    // The pressed picture with the plain colour on it can be hard to read: a frame shows the focus instead.
    SetKeepNormalWhenFocused(true);
    SetFont(style.font);
}

bool CSkinButton::Attach(const Bitmap* normal, const Bitmap* pressed, const Bitmap* disabled, int) {
    if (!normal) return false;
    m_normal = normal;
    if (!pressed) return false;
    m_pressedPicture = pressed;
    if (!disabled) return false;
    m_disabled = disabled;
    m_ownerDrawn = true;
    Invalidate();
    return true;
}

void CSkinButton::SetWindowText(std::string_view text) {
    if (m_text == text) return;
    m_text = text;
    FitFont();
    Invalidate();
}

void CSkinButton::SetTextColors(ColorRef normal, ColorRef pressed) {
    m_normalColor = normal;
    m_pressedColor = pressed;
    Invalidate();
}

void CSkinButton::SetFont(const LogFont& font) {
    m_font = font;
    FitFont();
    Invalidate();
}

void CSkinButton::SetTextOffset(int pixels) {
    m_textOffset = pixels;
    Invalidate();
}

void CSkinButton::FitFont() {
    const Size box{Place().width - 2 * margin, Place().height};
    m_fitted = FittingFont(Parent().GetDesktop().GetGraphics(), m_text, m_font, box, false);
}

void CSkinButton::DrawItem(Canvas& canvas, ItemState state) const {
    const Bitmap* picture = m_normal;
    ColorRef color = m_normalColor;
    switch (static_cast<unsigned>(state) & stateMask) {
        case 4:
        case 20:
            picture = m_disabled;
            color = SkinColors::disabled;
            break;
        case 16: picture = m_keepNormalWhenFocused ? m_normal : m_pressedPicture; break;
        case 17:
            picture = m_pressedPicture;
            color = m_pressedColor;
            break;
        default: break;
    }
    if (picture) canvas.StretchBlt(*picture, Place());
    Rect box = Place();
    box.y += m_textOffset;
    box.height -= m_textOffset;
    canvas.DrawText(m_text, box, captionFormat, m_fitted, color);
}

void CSkinButton::DrawPlain(Canvas& canvas, bool pressed) const {
    const Palette& colors = Parent().GetDesktop().Colors();
    canvas.RoundRect(Place(), radius, pressed ? colors.pressed : colors.tile, colors.edge, 1.5);
    const ColorRef enabled = pressed ? colors.pressedText : colors.text;
    canvas.DrawText(m_text, Place(), captionFormat, m_fitted, IsWindowEnabled() ? enabled : colors.disabled);
}

void CSkinButton::DrawFrame(Canvas& canvas) const {
    const ColorRef color = Parent().GetDesktop().Colors().accent;
    const Rect& at = Place();
    canvas.FillRect({at.x, at.y, at.width, frame}, color);
    canvas.FillRect({at.x, at.Bottom() - frame, at.width, frame}, color);
    canvas.FillRect({at.x, at.y, frame, at.height}, color);
    canvas.FillRect({at.Right() - frame, at.y, frame, at.height}, color);
}

void CSkinButton::Draw(Canvas& canvas) {
    if (!m_ownerDrawn) {
        DrawPlain(canvas, m_pressed);
        if (HasFocus()) DrawFrame(canvas);
        return;
    }
    ItemState state = ItemState::Normal;
    // The finger gives the focus only while it presses: a button does not stay lit after it.
    if (m_pressed) state = ItemState::Selected | ItemState::Focus;
    if (HasFocus()) state = state | ItemState::Focus;
    if (!IsWindowEnabled()) state = ItemState::Disabled;
    DrawItem(canvas, state);
    if (HasFocus()) DrawFrame(canvas);
}

void CSkinButton::AppendTargets(std::vector<TouchTarget>& targets) const {
    targets.push_back({Id(), FingerSized(Place())});
}

void CSkinButton::SetPressed(bool pressed) {
    if (m_pressed == pressed) return;
    m_pressed = pressed;
    Invalidate();
}

void CSkinButton::OnTouchDown(Point) {
    SetPressed(true);
}

void CSkinButton::OnTouchMove(Point at) {
    SetPressed(FingerSized(Place()).Contains(at));
}

void CSkinButton::OnTouchUp(Point at) {
    SetPressed(false);
    if (FingerSized(Place()).Contains(at)) Parent().Click(Id());
}

void CSkinButton::OnTouchCancel() {
    SetPressed(false);
}

bool CSkinButton::OnKey(const KeyEvent& event) {
    if (event.code != KeyCode::Return && event.text != " ") return false;
    Parent().Click(Id());
    return true;
}

}  // namespace varkel
