// The button in the top bar that gives up the start of the module or a call that is dialled. It works while
// the main screen itself is closed to touches. Dialog thread.
#pragma once

#include <functional>

#include "ui/screens/top_bar.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

class CancelButton final : public Dialog {
  public:
    CancelButton(Desktop& desktop, std::function<void(CancelOffer)> onCancel);

    // What the button offers from now on; it is not there for None.
    void SetOffer(CancelOffer offer);

    Rect Reach() const override;
    std::vector<TouchTarget> Targets() const override;

  private:
    void OnPaint(Canvas& canvas) override;
    void OnTouch(const TouchEvent& event) override;
    void OnTouchCancel() override;
    void DrawCaption(Canvas& canvas) const;

    const std::function<void(CancelOffer)> m_onCancel;
    CancelOffer m_offer = CancelOffer::None;
    bool m_pressed = false;
};

}  // namespace varkel
