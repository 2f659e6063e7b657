#include "simulator/scenario_player.h"

#include <algorithm>
#include <utility>

#include "simulator/bytes.h"

namespace varkel::sim {

ScenarioPlayer::ScenarioPlayer(Scenario scenario, ScenarioHooks hooks)
    : m_scenario(std::move(scenario)), m_hooks(std::move(hooks)) {}

void ScenarioPlayer::ProgramPrinted(std::string_view bytes) {
    Remember(m_printed, bytes);
}

void ScenarioPlayer::UnitSaid(std::string_view line) {
    Remember(m_said, line);
    Remember(m_said, "\n");
}

void ScenarioPlayer::Remember(std::string& heard, std::string_view bytes) {
    if (Done()) return;
    heard += bytes;
    if (heard.size() > remembered) heard.erase(0, heard.size() - remembered);
}

void ScenarioPlayer::Advance(Millis now) {
    m_now = now;
    while (!Done()) {
        const ScenarioStep& step = m_scenario.steps[m_next];
        const Millis due = Due(step);
        if (now < due || !Carry(step, now)) return;
        m_doneAt = step.kind == StepKind::Expect ? now : due;
        ++m_next;
    }
}

std::optional<Millis> ScenarioPlayer::NextDeadline() const {
    if (Done()) return std::nullopt;
    const ScenarioStep& step = m_scenario.steps[m_next];
    const Millis due = Due(step);
    return m_now < due ? due : due + step.within;
}

void ScenarioPlayer::ProgramEnded() {
    if (Done()) return;
    const auto waits = [](const ScenarioStep& step) { return step.kind == StepKind::Expect; };
    const auto first = m_scenario.steps.begin() + static_cast<std::ptrdiff_t>(m_next);
    const auto step = std::find_if(first, m_scenario.steps.end(), waits);
    if (step != m_scenario.steps.end()) Fail(*step, "never came, the program has ended");
}

Millis ScenarioPlayer::Due(const ScenarioStep& step) const {
    return step.relative ? m_doneAt + step.time : std::max(step.time, m_doneAt);
}

bool ScenarioPlayer::Carry(const ScenarioStep& step, Millis now) {
    switch (step.kind) {
        case StepKind::Command: {
            const CommandResult result = m_hooks.command(step.text);
            if (!result.well) Fail(step, result.text);
            return result.well;
        }
        case StepKind::Expect:
            if (Find(step.text)) return true;
            if (now >= Due(step) + step.within)
                Fail(step, "did not come within " + DurationText(step.within));
            return false;
        case StepKind::Type:
        case StepKind::TypeSecret:
            if (m_hooks.type(step.text, step.kind == StepKind::TypeSecret)) return true;
            Fail(step, "there is no program that reads it");
            return false;
        case StepKind::End: m_hooks.end(); return true;
    }
    return true;
}

bool ScenarioPlayer::Find(const std::string& text) {
    for (std::string* const heard : {&m_printed, &m_said}) {
        const std::size_t at = heard->find(text);
        if (at == std::string::npos) continue;
        heard->erase(0, at + text.size());
        return true;
    }
    return false;
}

void ScenarioPlayer::Fail(const ScenarioStep& step, std::string_view why) {
    const bool expect = step.kind == StepKind::Expect;
    m_failure = "line " + std::to_string(step.line) + ": " +
                (expect ? "\"" + Visible(step.text, 60) + "\" " : std::string()) + std::string(why);
}

}  // namespace varkel::sim
