// What can be typed when no question is open.
#pragma once

#include <string>
#include <string_view>

#include "platform/terminal.h"
#include "session/varkel_dlg.h"
#include "ui/terminal/headless_calls.h"
#include "ui/terminal/headless_data.h"
#include "ui/terminal/headless_messages.h"
#include "ui/terminal/headless_phone_book.h"

namespace varkel {

// Dialog thread.
class HeadlessCommands {
  public:
    HeadlessCommands(CVarkelDlg& dialog, WindowMessages& windows, const CodePage& page, Terminal& terminal)
        : m_dialog(dialog),
          m_windows(windows),
          m_terminal(terminal),
          m_messages(dialog, page, terminal),
          m_phones(dialog, terminal),
          m_calls(dialog, page, terminal),
          m_data(dialog, page, terminal) {}

    void Run(std::string_view line);

  private:
    struct Command;
    static const Command commands[];

    void Help();
    void Status();
    void Key(std::string_view code);
    void Post(std::string_view message);

    CVarkelDlg& m_dialog;
    WindowMessages& m_windows;
    Terminal& m_terminal;
    HeadlessMessages m_messages;
    HeadlessPhoneBook m_phones;
    HeadlessCalls m_calls;
    HeadlessData m_data;
};

}  // namespace varkel
