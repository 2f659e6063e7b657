// Carries a scenario out, one step after the other.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/console.h"
#include "simulator/scenario.h"

namespace varkel::sim {

struct ScenarioHooks {
    std::function<CommandResult(std::string_view line)> command;
    // A line for the hosted program; false when that does not take it.
    std::function<bool(std::string_view line, bool secret)> type;
    std::function<void()> end;
};

// Like the unit, it has no clock of its own. Steps that wait for the program's output hold up those behind
// them.
class ScenarioPlayer {
  public:
    ScenarioPlayer(Scenario scenario, ScenarioHooks hooks);

    // What the hosted program printed, and a line that the unit or its main window said: an expected text may
    // stand in either. It may have come before its step begins, but after the last text that was found there.
    void ProgramPrinted(std::string_view bytes);
    void UnitSaid(std::string_view line);
    void Advance(Millis now);
    // When the next step is due, or has waited long enough.
    std::optional<Millis> NextDeadline() const;

    bool Done() const { return m_next == m_scenario.steps.size() || !m_failure.empty(); }
    // Why the run failed: "line 3: ..."; "" as long as it has not.
    const std::string& Failure() const { return m_failure; }
    // Fails the run when it waits for the program, which has ended.
    void ProgramEnded();

    static constexpr std::size_t remembered = 256 * 1024;  // bytes of either; older ones are forgotten

  private:
    Millis Due(const ScenarioStep& step) const;
    // False when the step is not finished.
    bool Carry(const ScenarioStep& step, Millis now);
    void Remember(std::string& heard, std::string_view bytes);
    bool Find(const std::string& text);
    void Fail(const ScenarioStep& step, std::string_view why);

    Scenario m_scenario;
    ScenarioHooks m_hooks;
    std::size_t m_next = 0;
    Millis m_now = 0;     // of the last Advance
    Millis m_doneAt = 0;  // when the step before was finished
    std::string m_printed;
    std::string m_said;
    std::string m_failure;
};

}  // namespace varkel::sim
