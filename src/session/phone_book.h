// Both phonebooks together: the local one and the SIM's.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "session/command_turn.h"
#include "session/phone_book_result.h"
#include "session/session.h"
#include "session/sim_phonebook.h"
#include "session/sim_phonebook_editor.h"
#include "session/worker.h"
#include "stores/phone_book_file.h"

namespace varkel {

// What the user writes; UTF-8. An entry of the SIM has the first number only.
struct PhoneText {
    std::string name;
    std::array<std::string, 4> numbers;
};

// All texts of an entry in one, as FoldCase() has them: what is found in it is found in the entry.
std::string SearchKey(const PhoneText& text);

// An entry as it was seen, which is how a change names it.
struct PhoneEntry {
    PhoneBookKind book = PhoneBookKind::Local;
    PhoneText text;
    PhoneBookRecord record;  // of the local book, and where it stands there
    std::size_t index = 0;
    SimEntry simEntry;
};

class PhoneBook {
  public:
    PhoneBook(Session& session, CommandTurn& turn);

    // The name for a number, or the number itself. The local book comes first; a number must be the same to
    // the last character. Any thread; takes as long as the flash needs.
    std::string NameOf(std::string_view number);

    // Local entries first, each book in its own order. Those whose name or one of whose numbers contains
    // `part`, whatever the case of its letters; all when it is empty. Any thread.
    std::vector<PhoneEntry> Find(PhoneBooks shown, std::string_view part);

    // Changes. They are made one after the other on a thread of their own, and `done` learns the outcome on
    // the dialog thread. Any thread.
    using Done = std::function<void(PhoneBookResult)>;
    void Add(PhoneBookKind book, PhoneText text, Done done);
    void Change(PhoneEntry seen, PhoneText text, Done done);
    void Delete(PhoneEntry seen, Done done);

    // For the module's handlers and the open sequence.
    SimPhonebook& Sim() { return m_sim; }
    SimPhonebookEditor& Editor() { return m_editor; }

  private:
    using Work = std::function<PhoneBookResult()>;
    void Start(Work work, Done done);
    // Nothing is cut: what a field does not hold is refused.
    PhoneBookResult MakeRecord(const PhoneText& text, PhoneBookRecord& record) const;
    PhoneEntry EntryOf(const PhoneBookRecord& record, std::size_t index) const;

    Session& m_session;
    PhoneBookFile m_file;
    SimPhonebook m_sim;
    SimPhonebookEditor m_editor;
    Worker m_worker;
};

}  // namespace varkel
