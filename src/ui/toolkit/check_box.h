// A box to tick, with its text beside it. Dialog thread.
#pragma once

#include <string>

#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog_spec.h"
#include "ui/toolkit/marked_text.h"

namespace varkel {

// A finger that is lifted on it turns the tick and clicks.
class CheckBox final : public Control {
  public:
    CheckBox(Dialog& parent, const CheckSpec& spec);

    void SetCheck(bool checked);
    bool IsChecked() const { return m_checked; }

    void Draw(Canvas& canvas) override;
    void AppendTargets(std::vector<TouchTarget>& targets) const override;
    void OnTouchUp(Point at) override;
    bool TakesFocus() const override { return true; }
    bool OnKey(const KeyEvent& event) override;

  private:
    void Toggle();

    MarkPictures m_pictures;
    TextRole m_role;
    std::string m_text;
    bool m_checked = false;
};

}  // namespace varkel
