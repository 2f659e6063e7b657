#include "simulator/console.h"

#include <algorithm>
#include <array>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

CommandResult Help(SimulatedUnit&, std::string_view arguments, Millis);

constexpr ConsoleCommand helpConsole[] = {
    {"help", "[COMMAND]", "this list, or one line of it", Help},
};

using Tables = std::array<std::span<const ConsoleCommand>, 6>;

Tables AllTables() {
    return {UnitConsole(),    LineConsole(),  CallConsole(),
            MessageConsole(), StateConsole(), std::span<const ConsoleCommand>(helpConsole)};
}

const ConsoleCommand* Find(std::string_view name) {
    for (const auto table : AllTables()) {
        for (const ConsoleCommand& command : table) {
            if (command.name == name) return &command;
        }
    }
    return nullptr;
}

CommandResult Unknown(std::string_view name) {
    return Failed("\"" + Visible(name, 40) + "\" is no command; \"help\" lists them");
}

CommandResult Help(SimulatedUnit&, std::string_view arguments, Millis) {
    if (!arguments.empty()) {
        const ConsoleCommand* const command = Find(arguments);
        if (!command) return Unknown(arguments);
        return {true, HelpLine(command->name, command->arguments, command->help)};
    }
    std::string text;
    for (const auto table : AllTables()) {
        for (const ConsoleCommand& command : table) {
            text += HelpLine(command.name, command.arguments, command.help) + "\n";
        }
    }
    text.pop_back();
    return {true, text};
}

}  // namespace

std::string HelpLine(std::string_view name, std::string_view arguments, std::string_view help) {
    constexpr std::size_t column = 38;
    std::string line = std::string(name) + " " + std::string(arguments);
    line.resize(std::max(line.size() + 1, column), ' ');
    return line + std::string(help);
}

CommandResult Failed(std::string text) {
    return {false, std::move(text)};
}

CommandResult Usage(std::string_view name) {
    const ConsoleCommand* const command = Find(name);
    return Failed("usage: " + std::string(name) + " " + std::string(command ? command->arguments : ""));
}

CommandResult RunConsoleCommand(SimulatedUnit& unit, std::string_view line, Millis now) {
    if (line.size() > longestConsoleLine) return Failed("the line is too long");
    line = Trimmed(line);
    if (line.empty()) return {};
    const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
    const std::string_view name = line.substr(0, end);
    const ConsoleCommand* const command = Find(name);
    return command ? command->run(unit, Trimmed(line.substr(end)), now) : Unknown(name);
}

}  // namespace varkel::sim
