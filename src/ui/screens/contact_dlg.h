// One entry of the phonebook: its numbers, and what can be done with them. Dialog thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "session/phone_book.h"
#include "ui/screens/phone_book_wait.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// What the phonebook is opened for.
enum class PhoneBookMode { Use, PickNumber };

// Opens the screen that writes a message to a number.
using WriteMessage = std::function<void(const std::string& number)>;

class CContactDlg final : public Dialog {
  public:
    CContactDlg(ScreenContext& context, PhoneEntry entry, PhoneBookMode mode, WriteMessage writeMessage);

    // How the screen was left.
    enum class Outcome { None, Dialled, Changed, Picked };
    Outcome GetOutcome() const { return m_outcome; }
    const std::string& Number() const { return m_number; }

  private:
    void OnInitDialog() override;
    bool OnKey(const KeyEvent& event) override;
    void LeaveWith(Outcome outcome);
    // The selected number; empty when the entry has none.
    std::string Selected() const;
    void UseNumber();
    void Message();
    void Edit();
    void Delete();

    ScreenContext& m_context;
    const PhoneEntry m_entry;
    const PhoneBookMode m_mode;
    const WriteMessage m_writeMessage;
    std::vector<std::size_t> m_rows;  // which of the four numbers each row shows
    PhoneBookWait m_wait;
    Outcome m_outcome = Outcome::None;
    std::string m_number;
};

}  // namespace varkel
