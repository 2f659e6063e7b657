// A warning: the text of a code, and what can be answered. Dialog thread.
#pragma once

#include "session/warn_code.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// What is below the text; any other number than 1 and 2 is OK alone.
enum class WarnButtonMode : int { Ok = 0, OkCancel = 1, None = 2 };

// Whether the user wants this item deleted or all.
enum class DeleteChoice : int { ThisItem = 0, All = 1 };

// Lives for one question. A warning without buttons goes when it is touched.
class CWarnDlg final : public Dialog {
  public:
    CWarnDlg(Desktop& desktop, WarnCode code, WarnButtonMode mode, bool autoClose = false,
             bool wantDeleteChoice = false);

    WarnCode Code() const { return m_code; }
    // Holds after DoModal has returned Ok.
    DeleteChoice GetDeleteChoice() const { return m_choice; }

    static constexpr Ticks autoCloseTime = 3000;

  private:
    void OnInitDialog() override;
    void OnPaint(Canvas& canvas) override;
    void OnTouch(const TouchEvent& event) override;
    bool OnKey(const KeyEvent& event) override;
    void LayOutButtons();

    WarnCode m_code;
    WarnButtonMode m_mode;
    bool m_autoClose;
    bool m_wantDeleteChoice;
    DeleteChoice m_choice = DeleteChoice::ThisItem;
};

// Shows a warning modally.
inline DialogResult Warn(Desktop& desktop, WarnCode code, WarnButtonMode mode = WarnButtonMode::Ok) {
    return CWarnDlg(desktop, code, mode).DoModal();
}

}  // namespace varkel
