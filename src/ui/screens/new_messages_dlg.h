// What has come while the user did something else: the message itself when it is one, else the inbox. Dialog
// thread.
#pragma once

#include <optional>

#include "ui/screens/message_boxes_dlg.h"
#include "ui/screens/read_message_dlg.h"

namespace varkel {

// The messages that come while it is open count as well: one that is being read is not taken away for them,
// the inbox follows it.
class CNewMessagesDlg {
  public:
    explicit CNewMessagesDlg(ScreenContext& context) : m_context(context) {}

    // Takes over the count of new messages and returns at once.
    void Show();

  private:
    void ShowInbox();
    void ShowNewest();

    ScreenContext& m_context;
    int m_count = 0;
    std::optional<CReadMessageDlg> m_message;
    std::optional<CMessageBoxesDlg> m_boxes;
};

}  // namespace varkel
