// Scenario files: what happens in the simulated world, and when.
//
//     # times: 500ms, 2s, 1.5s, 2m from the start; with a "+" from the end of the line before; none = at once
//     0s     pin 1234
//     2s     expect "PIN" within 30s
//     +1s    type-secret 1234
//     expect "3G_OPEN_END" within 120s
//     +20s   vanish
//     +10s   appear
//     +60s   end
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/millis.h"

namespace varkel::sim {

enum class StepKind {
    Command,     // of the console
    Expect,      // waits until the hosted program or the unit has said the text
    Type,        // a line for the hosted program
    TypeSecret,  // one that is not shown
    End,
};

struct ScenarioStep {
    int line = 0;
    bool relative = true;  // to the end of the step before; else to the start
    Millis time = 0;
    StepKind kind = StepKind::Command;
    std::string text;
    Millis within = 0;  // Expect: for how long
};

struct Scenario {
    std::vector<ScenarioStep> steps;
    std::vector<std::string> errors;  // "line 3: ...", at most `mostErrors`

    static constexpr std::size_t mostSteps = 10'000;
    static constexpr std::size_t mostErrors = 20;
};

// Console commands are tried out on a unit of their own, so that their mistakes show here as well.
Scenario ParseScenario(std::string_view text);

}  // namespace varkel::sim
