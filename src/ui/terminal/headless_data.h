// The data link on a terminal.
#pragma once

#include <string_view>

#include "platform/code_page.h"
#include "platform/terminal.h"
#include "session/varkel_dlg.h"

namespace varkel {

// Dialog thread.
class HeadlessData {
  public:
    HeadlessData(CVarkelDlg& dialog, const CodePage& page, Terminal& terminal)
        : m_dialog(dialog), m_page(page), m_terminal(terminal) {}

    // "on", "off", or nothing, which tells how far it is.
    void Run(std::string_view what);
    // Prints the result when the test has ended.
    void Test();

  private:
    void Print();

    CVarkelDlg& m_dialog;
    const CodePage& m_page;
    Terminal& m_terminal;
};

}  // namespace varkel
