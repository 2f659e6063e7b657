// What can be typed when no question is open.
#pragma once

#include <string>
#include <string_view>

#include "platform/terminal.h"
#include "session/varkel_dlg.h"
#include "ui/headless_calls.h"
#include "ui/headless_messages.h"
#include "ui/headless_phone_book.h"

namespace varkel {

// Dialog thread.
class HeadlessCommands {
  public:
    HeadlessCommands(CVarkelDlg& dialog, const CodePage& page, Terminal& terminal)
        : m_dialog(dialog),
          m_terminal(terminal),
          m_messages(dialog, page, terminal),
          m_phones(dialog, terminal),
          m_calls(dialog, page, terminal) {}

    void Run(std::string_view line);

  private:
    struct Command;
    static const Command commands[];

    void Help();
    void Status();

    CVarkelDlg& m_dialog;
    Terminal& m_terminal;
    HeadlessMessages m_messages;
    HeadlessPhoneBook m_phones;
    HeadlessCalls m_calls;
};

}  // namespace varkel
