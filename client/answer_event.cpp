#include "client/answer_event.h"

#include <algorithm>

namespace varkel::client {

namespace {

// How often a waiting client looks whether there is still somebody who could answer.
constexpr Ticks slice = 500;

}  // namespace

AnswerEvent::AnswerEvent(PhoneProgram& program, std::string_view name, Ticks timeout)
    : m_program(program),
      m_timeout(timeout),
      m_start(program.GetRuntime().GetTickCount()),
      m_event(program.Objects().CreateEvent(name)),
      m_turn(program.Objects().CreateMutex(std::string(name) + " TURN")) {}

ExitCode AnswerEvent::Prepare() {
    if (!m_event || !m_turn) return Fail(ExitCode::Failed, "the event of the answer cannot be had");
    if (m_turn->Wait(Left()) != WaitResult::Object0)
        return Fail(ExitCode::NoAnswer, "another client waits for its answer");
    m_event->Reset();
    return ExitCode::Ok;
}

ExitCode AnswerEvent::Await(const std::function<void()>& again) {
    while (m_event->Wait(std::min(Left(), slice)) != WaitResult::Object0) {
        if (!m_program.Running()) return Fail(ExitCode::NotRunning, "varkel ended before it answered");
        if (Left() == 0) return Fail(ExitCode::NoAnswer, "no answer in time");
        if (again) again();
    }
    return ExitCode::Ok;
}

Ticks AnswerEvent::Left() const {
    const Ticks used = TicksSince(m_program.GetRuntime().GetTickCount(), m_start);
    return used < m_timeout ? m_timeout - used : 0;
}

}  // namespace varkel::client
