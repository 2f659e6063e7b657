// The dial pad: a number is composed and dialled; while a call is up the same keys are tones for the other
// party. Dialog thread.
#pragma once

#include <string>
#include <string_view>

#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// The number is lost when the pad closes.
class CDialPad final : public Dialog {
  public:
    explicit CDialPad(ScreenContext& context);

    void OnSessionChanged() override;

  private:
    void OnInitDialog() override;
    bool OnKey(const KeyEvent& event) override;

    bool InCall() const { return m_session.State().MainScreenMode == ScreenMode::InCall; }
    void Press(std::string_view key);
    void Backspace();
    void Dial();
    void ShowNumber();
    // The person whose number it is, or the one that the tones go to.
    void ShowName();

    CVarkelDlg& m_session;
    std::string m_number;
};

}  // namespace varkel
