#include "ui/cancel_button.h"

#include <utility>

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
    const std::string name = m_offer == CancelOffer::DialledCall ? "CancelCall" : "CancelStart";
    if (const Bitmap* const picture = LoadPicture(m_pressed ? name + "Sel" : name))
        canvas.StretchBlt(*picture, place);
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
