// The form of a phonebook entry: a name and its numbers, four in the unit and one on the SIM. Dialog thread.
#pragma once

#include <optional>

#include "session/phone_book.h"
#include "ui/screens/phone_book_wait.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// Ends with Ok when the phonebook has taken what was written; a refused entry stays in the form.
class CEditContactDlg final : public Dialog {
  public:
    // A new entry, for the phonebook that CPhoneBookSet names.
    CEditContactDlg(ScreenContext& context, PhoneText text);
    // The change of an entry.
    CEditContactDlg(ScreenContext& context, PhoneEntry seen);

  private:
    CEditContactDlg(ScreenContext& context, PhoneBookKind book, PhoneText text);

    void OnInitDialog() override;
    PhoneText Written() const;
    bool NameIsTaken(const std::string& name) const;
    void Save();
    void Leave();

    PhoneBook& m_phones;
    const PhoneBookKind m_book;
    PhoneText m_text;  // as it stood when the form opened
    std::optional<PhoneEntry> m_seen;
    PhoneBookWait m_wait;
};

}  // namespace varkel
