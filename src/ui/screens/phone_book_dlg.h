// The phonebook: the entries of the unit and of the SIM in one list, which typing narrows. Dialog thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "session/phone_book.h"
#include "ui/screens/contact_dlg.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/list_box.h"

namespace varkel {

class CSkinScrollBar;

// A tap opens an entry. The list is what the phonebooks held when it was loaded last: at the opening, after a
// change, and when the session has changed.
class CPhoneBookDlg final : public Dialog {
  public:
    CPhoneBookDlg(ScreenContext& context, PhoneBookMode mode, WriteMessage writeMessage = nullptr);

    // Lets the user choose a number; nothing when he leaves without.
    static std::optional<std::string> PickNumber(ScreenContext& context);

    void OnSessionChanged() override;

  private:
    struct Contact {
        PhoneEntry entry;
        std::string key;  // what is searched
    };

    void OnInitDialog() override;
    bool OnKey(const KeyEvent& event) override;
    void OnVScroll(ScrollCode code, int position, CSkinScrollBar& bar) override;
    void Load();
    void Filter();
    void ShowPlace();
    ListRow RowOf(int row);
    void Tap(int row);
    void Pick(std::string number);
    void New();
    void Set();

    ScreenContext& m_context;
    const PhoneBookMode m_mode;
    const WriteMessage m_writeMessage;
    std::vector<Contact> m_contacts;
    std::vector<std::size_t> m_rows;  // the contacts that are shown
    CSkinScrollBar* m_bar = nullptr;  // while the screen is open
    std::optional<std::string> m_picked;
};

}  // namespace varkel
