// The message boxes on a terminal.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/code_page.h"
#include "platform/terminal.h"
#include "session/varkel_dlg.h"

namespace varkel {

// Dialog thread. Messages are counted from 1, the newest first, as the list that was shown last had them.
class HeadlessMessages {
  public:
    HeadlessMessages(CVarkelDlg& dialog, const CodePage& page, Terminal& terminal)
        : m_dialog(dialog), m_page(page), m_terminal(terminal) {}

    void List(SmsBox box);
    // Shows the whole message; an unread one becomes read.
    void Read(std::string_view number);
    // A number, or "all".
    void Delete(std::string_view which);
    // The newest message when fewer than two are new, else the inbox.
    void ShowNew();
    // A number and a text, parted by a blank.
    void Send(std::string_view numberAndText);

  private:
    MessageBox& Box(SmsBox box);
    void Load(SmsBox box);
    // The row that the user means; nothing, and he was told, when there is none.
    std::optional<std::size_t> RowOf(std::string_view number);
    void Show(const SmsRecord& record);
    std::string Shown(std::string_view narrow) const;
    void Report(StoreResult result);

    CVarkelDlg& m_dialog;
    const CodePage& m_page;
    Terminal& m_terminal;
    SmsBox m_box = SmsBox::Inbox;
    std::vector<SmsRecord> m_list;
};

}  // namespace varkel
