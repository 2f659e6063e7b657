#include "ui/screens/cancel_button.h"

#include <utility>

#include "ui/toolkit/fonts.h"

namespace varkel {

namespace {

constexpr Rect place{586, 0, 140, 50};
constexpr Rect reach{586, 0, 140, 63};  // over the edge of the bar: the button is lower than a finger needs

constexpr DialogSpec spec{
    .rect = place, .directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\", .scope = DialogScope::OwnPlace};

}  // namespace

CancelButton::CancelButton(Desktop& desktop, std::function<void(CancelOffer)> onCancel)
    : Dialog(desktop, spec), m_onCancel(std::move(onCancel)) {}

void CancelButton::SetOffer(CancelOffer offer) {
    if (m_offer == offer) return;
    m_offer = offer;
    m_pressed = false;
    if (offer == CancelOffer::None) {
        EndDialog(DialogResult::Cancel);
        return;
    }
    Show();
    Invalidate();
}

Rect CancelButton::Reach() const {
    return reach;
}

std::vector<TouchTarget> CancelButton::Targets() const {
    return {{idCancel, reach}};
}

void CancelButton::OnPaint(Canvas& canvas) {
    canvas.FillRect(place, GetDesktop().Colors().bar);
    const bool call = m_offer == CancelOffer::DialledCall;
    const std::string name = call ? "CancelCall" : "CancelStart";
    if (const Bitmap* const picture = LoadPicture(m_pressed ? name + "Sel" : name))
        canvas.StretchBlt(*picture, place);
    // A cross would look like the exit beside it.
    if (!call) DrawCaption(canvas);
}

void CancelButton::DrawCaption(Canvas& canvas) const {
    constexpr Rect box = place.Inset(10);
    const Palette& colors = GetDesktop().Colors();
    const std::string text = LoadText("IDS_CANCEL");
    const LogFont font =
        FittingFont(GetDesktop().GetGraphics(), text, StyleOf(TextRole::Button, Colors()).font,
                    {box.width, box.height}, false);
    canvas.DrawText(text, box, TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine, font,
                    m_pressed ? colors.pressedText : colors.text);
}

void CancelButton::OnTouchCancel() {
    m_pressed = false;
    Invalidate();
}

void CancelButton::OnTouch(const TouchEvent& event) {
    const bool inside = reach.Contains(event.at);
    m_pressed = inside && event.action != TouchAction::Up;
    Invalidate();
    if (inside && event.action == TouchAction::Up) m_onCancel(m_offer);
}

}  // namespace varkel
