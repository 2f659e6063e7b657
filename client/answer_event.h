// The named event with which the program answers a request.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "client/phone_program.h"

namespace varkel::client {

// The program never resets such an event; a client does, before it asks. All clients share the event, so
// whoever waits for it holds the mutex "<event> TURN": of two clients none takes the other one's answer.
class AnswerEvent {
  public:
    // `timeout` is for both steps together, in ms.
    AnswerEvent(PhoneProgram& program, std::string_view name, Ticks timeout);

    // Takes the turn and resets the event. The request goes out after this.
    ExitCode Prepare();
    // Waits for the answer. `again` runs now and then until it comes: a program that is busy drops a request.
    ExitCode Await(const std::function<void()>& again = {});

  private:
    Ticks Left() const;

    PhoneProgram& m_program;
    const Ticks m_timeout;
    const Ticks m_start;
    const std::shared_ptr<Event> m_event;
    const std::unique_ptr<NamedMutex> m_turn;  // given back with this object, or by the death of this program
};

}  // namespace varkel::client
