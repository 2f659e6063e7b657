// Both phonebooks on a terminal.
#pragma once

#include <string_view>
#include <vector>

#include "platform/terminal.h"
#include "session/varkel_dlg.h"

namespace varkel {

// Dialog thread. Entries are counted from 1, as the list that was shown last had them.
class HeadlessPhoneBook {
  public:
    HeadlessPhoneBook(CVarkelDlg& dialog, Terminal& terminal) : m_dialog(dialog), m_terminal(terminal) {}

    // The entries that contain `part`, or all.
    void List(std::string_view part);
    // A name, in quotes or not, and a number behind its last blank.
    void Add(PhoneBookKind book, std::string_view nameAndNumber);
    // A row of the list shown last, then as for Add; the other numbers of the entry stay.
    void Change(std::string_view rowNameAndNumber);
    void Remove(std::string_view row);
    void Find(std::string_view number);

  private:
    // The entry of a row; null, and the user was told, when there is none.
    const PhoneEntry* EntryOf(std::string_view row);
    // False, and the user was told, when one of the two is missing.
    bool Parse(std::string_view nameAndNumber, std::string& name, std::string& number);
    void Report(PhoneBookResult result, std::string_view done);

    CVarkelDlg& m_dialog;
    Terminal& m_terminal;
    std::vector<PhoneEntry> m_list;
};

}  // namespace varkel
