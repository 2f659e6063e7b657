// The call lists on a terminal.
#pragma once

#include <string_view>
#include <vector>

#include "platform/code_page.h"
#include "platform/terminal.h"
#include "session/varkel_dlg.h"

namespace varkel {

// Dialog thread. Calls are counted from 1, the newest first, as the list that was shown last had them.
class HeadlessCalls {
  public:
    HeadlessCalls(CVarkelDlg& dialog, const CodePage& page, Terminal& terminal)
        : m_dialog(dialog), m_page(page), m_terminal(terminal) {}

    // "dialled", "received" or "missed".
    void List(std::string_view kind);
    // A number, or "all".
    void Delete(std::string_view which);

  private:
    CallList& Shown();
    void Print();

    CVarkelDlg& m_dialog;
    const CodePage& m_page;
    Terminal& m_terminal;
    CallKind m_kind = CallKind::Dialled;
    std::vector<CallRecord> m_list;
};

}  // namespace varkel
