// The commands with which a user, a scenario or a test changes the simulated world.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "simulator/millis.h"

namespace varkel::sim {

class SimulatedUnit;

struct CommandResult {
    bool well = true;  // false: not understood or not possible, and nothing was changed
    std::string text;  // what to print; may have several lines, the last one without its end
};

struct ConsoleCommand {
    std::string_view name;
    std::string_view arguments;  // as the help shows them
    std::string_view help;
    CommandResult (*run)(SimulatedUnit& unit, std::string_view arguments, Millis now);
};

std::span<const ConsoleCommand> UnitConsole();  // power, SIM, network
std::span<const ConsoleCommand> LineConsole();  // what happens on the serial line
std::span<const ConsoleCommand> CallConsole();
std::span<const ConsoleCommand> MessageConsole();
std::span<const ConsoleCommand> StateConsole();  // phonebook, identity, looking at it all

CommandResult RunConsoleCommand(SimulatedUnit& unit, std::string_view line, Millis now);

// What a command without a table of its own says about itself: "name arguments  help".
std::string HelpLine(std::string_view name, std::string_view arguments, std::string_view help);

inline constexpr std::size_t longestConsoleLine = 4096;

// Answers of the tables.
CommandResult Usage(std::string_view name);
CommandResult Failed(std::string text);

}  // namespace varkel::sim
