// Changes of the SIM's phonebook.
#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string_view>

#include "session/command_turn.h"
#include "session/phone_book_result.h"
#include "session/session.h"
#include "session/sim_phonebook.h"

namespace varkel {

// Each change waits for the modem's final results, for at most some seconds, and changes the list in memory
// only when the SIM took it. While it lasts nobody else's command goes out. Texts are UTF-8. One caller at a
// time, on a thread that may wait, never the read thread.
class SimPhonebookEditor {
  public:
    SimPhonebookEditor(Session& session, CommandTurn& turn, SimPhonebook& book);

    PhoneBookResult Add(std::string_view name, std::string_view number);
    PhoneBookResult Change(const SimEntry& seen, std::string_view name, std::string_view number);
    PhoneBookResult Delete(const SimEntry& seen);

    // The final result of a command. Read thread.
    void OnResult(bool ok) { m_answer = ok ? Answer::Ok : Answer::Error; }

  private:
    enum class Answer { Awaited, Ok, Error, None };

    // What goes onto the SIM, as the command takes it.
    struct Content {
        SimName name;
        SimNumber number;
    };
    PhoneBookResult Check(std::string_view name, std::string_view number, Content& content) const;
    bool Reachable() const;
    PhoneBookResult Failure() const;
    PhoneBookResult FindFreeSlot(std::optional<SimSlot>& slot);
    PhoneBookResult LookAt(SimSlot slot, bool& free);
    PhoneBookResult Write(SimSlot slot, const Content& content, std::string_view name);

    // Carries out `change` as the only one who sends.
    PhoneBookResult InTurn(const std::function<PhoneBookResult()>& change);
    Answer Ask(const std::function<void()>& send, Ticks limit);

    Session& m_session;
    CommandTurn& m_turn;
    SimPhonebook& m_book;
    std::atomic<Answer> m_answer = Answer::None;
};

}  // namespace varkel
