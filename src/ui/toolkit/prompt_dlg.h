// A tip: one text in a small window, beside which the screen below goes on working. Dialog thread.
#pragma once

#include <string>
#include <string_view>

#include "ui/toolkit/dialog.h"

namespace varkel {

// Other programs find it by its window text, "MsgTipDlg". It goes when it is touched.
class CPromptDlg final : public Dialog {
  public:
    explicit CPromptDlg(Desktop& desktop);

    // Opens the tip, or changes the text of an open one.
    void ShowTip(std::string_view text);
    void Hide() { EndDialog(DialogResult::Ok); }

  private:
    void OnInitDialog() override;
    void OnTouch(const TouchEvent& event) override;

    std::string m_text;
};

}  // namespace varkel
