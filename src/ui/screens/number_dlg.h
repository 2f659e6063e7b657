// The keypad for a code, a code and a new one, or the reply to a message of the network. Dialog thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "session/screens.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

enum class NumberMode : int { Code = 0, UssdReply = 2 };

// It stays open, with a warning above it, while the entry is not what the request accepts.
class CNumberDlg final : public Dialog {
  public:
    // `message` is what the reply is for, shown below a single field without a label.
    CNumberDlg(ScreenContext& context, CodeRequest request, NumberMode mode = NumberMode::Code,
               std::string message = {});

    // What was typed, once the dialog has ended with Ok.
    const CodeEntry& Entry() const { return m_entry; }

  private:
    void OnInitDialog() override;
    void OnDestroy() override;
    void OnFocusChanged(int id) override;
    bool OnKey(const KeyEvent& event) override;

    void Append(std::string_view character);
    void Backspace();
    void OnOk();

    const CodeRequest m_request;
    const NumberMode m_mode;
    const std::string m_message;
    int m_activeField = 0;  // 0 the first, 1 the second
    CodeEntry m_entry;
    std::unique_ptr<CWarnDlg> m_warning;
};

}  // namespace varkel
