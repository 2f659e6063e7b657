#include "simulator/scenario.h"

#include <algorithm>
#include <optional>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

class ScenarioParser {
  public:
    ScenarioParser() : m_trial(UnitConfig(), 0) {}

    Scenario Run(std::string_view text) {
        if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
        for (m_line = 1; !text.empty(); ++m_line) {
            const std::size_t end = text.find('\n');
            const std::string_view content = Trimmed(text.substr(0, end));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
            if (content.empty() || content.front() == '#') continue;
            if (m_scenario.steps.size() == Scenario::mostSteps) {
                Error("too many lines");
                break;
            }
            Line(content);
        }
        return std::move(m_scenario);
    }

  private:
    void Line(std::string_view content) {
        ScenarioStep step;
        step.line = m_line;
        if (!Time(content, step)) return;
        const std::size_t end = std::min(content.find_first_of(" \t"), content.size());
        const std::string_view word = content.substr(0, end);
        const std::string_view rest = Trimmed(content.substr(end));
        if (word == "expect") {
            if (!Expect(rest, step)) return;
        } else if (word == "type" || word == "type-secret") {
            step.kind = word == "type" ? StepKind::Type : StepKind::TypeSecret;
            step.text = rest;
        } else if (word == "end") {
            step.kind = StepKind::End;
            if (!rest.empty()) return Error("nothing may stand behind \"end\"");
        } else {
            const CommandResult tried = Try(content);
            if (!tried.well) return Error(tried.text);
            step.text = content;
        }
        m_scenario.steps.push_back(std::move(step));
    }

    // Takes the time off the front; a line without one happens at once.
    bool Time(std::string_view& content, ScenarioStep& step) {
        const bool plus = content.front() == '+';
        if (!plus && (content.front() < '0' || content.front() > '9')) return true;
        const std::size_t end = std::min(content.find_first_of(" \t"), content.size());
        const std::string_view word = content.substr(plus ? 1 : 0, end - (plus ? 1 : 0));
        const auto time = ParseDuration(word);
        content = Trimmed(content.substr(end));
        if (!time) {
            Error("\"" + Visible(word, 40) + "\" is no time");
            return false;
        }
        if (content.empty()) {
            Error("a time with nothing to do");
            return false;
        }
        step.relative = plus;
        step.time = *time;
        return true;
    }

    bool Expect(std::string_view rest, ScenarioStep& step) {
        step.kind = StepKind::Expect;
        const bool quoted = rest.starts_with('"');
        const auto text = TakeWord(rest);
        const std::string word = TakeWord(rest).value_or("");
        const auto within = ParseDuration(rest);
        if (!quoted || !text || text->empty() || word != "within" || !within) {
            Error("expected: expect \"TEXT\" within 30s");
            return false;
        }
        step.text = *text;
        step.within = *within;
        return true;
    }

    // Each on a unit that runs, dials a number and a data call, whatever the lines before have done to it.
    CommandResult Try(std::string_view command) {
        m_trial.SetVanished(false);
        m_trial.SetUsbDown(false);
        m_trial.SetModulePower(true, m_time);
        m_trial.Messages().ForgetWaiting();
        m_trial.Sim().messages.Clear();
        m_time += trialTime;
        m_trial.Advance(m_time);
        m_trial.GetModem().CurrentCall().Lose("another line is tried");
        m_trial.GetModem().CurrentCall().Dial("1", m_time);
        m_trial.GetModem().Data().Dial("", m_time);
        return m_trial.Command(command, m_time);
    }

    void Error(std::string_view text) {
        if (m_scenario.errors.size() < Scenario::mostErrors)
            m_scenario.errors.push_back("line " + std::to_string(m_line) + ": " + std::string(text));
    }

    static constexpr Millis trialTime = 60'000;

    SimulatedUnit m_trial;
    Millis m_time = 0;
    Scenario m_scenario;
    int m_line = 0;
};

}  // namespace

Scenario ParseScenario(std::string_view text) {
    return ScenarioParser().Run(text);
}

}  // namespace varkel::sim
