// A message is written and sent. Dialog thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

class CWriteMessageDlg final : public Dialog {
  public:
    // What stands in the fields at first.
    CWriteMessageDlg(ScreenContext& context, std::string_view recipient, std::string_view text);

    // A call gets the screen; what was typed is there again when it has ended.
    void HideForCall();
    void OnSessionChanged() override;

    // What one message holds, in UTF-16 units.
    static constexpr std::size_t mostUnits = 70;
    // A text of more than this warns when it gets the focus.
    static constexpr std::size_t warnUnits = 60;

  private:
    void OnInitDialog() override;
    void OnSoftKeyboard(bool up) override;
    void OnFocusChanged(int id) override;

    void ShowCounter();
    void PickRecipient();
    void PickPhrase();
    void Send();
    void Exit();
    void LowerKeyboard();

    ScreenContext& m_context;
    std::string m_recipient;
    std::string m_text;
    bool m_hiddenForCall = false;
    std::unique_ptr<CWarnDlg> m_warning;
};

// Does so with every such screen.
void HideWriteMessage(Desktop& desktop);

}  // namespace varkel
