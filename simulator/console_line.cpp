// Console commands for the serial line: faults, and what the modem says unasked.
#include <charconv>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

bool Probability(std::string_view text, double& value) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (fault != std::errc() || rest != end || !(number >= 0 && number <= 1)) return false;
    value = number;
    return true;
}

CommandResult Noise(SimulatedUnit& unit, std::string_view arguments, Millis) {
    return Probability(arguments, unit.Line().Settings().noise) ? CommandResult() : Usage("noise");
}

CommandResult Lose(SimulatedUnit& unit, std::string_view arguments, Millis) {
    return Probability(arguments, unit.Line().Settings().lose) ? CommandResult() : Usage("lose");
}

CommandResult Double(SimulatedUnit& unit, std::string_view arguments, Millis) {
    return Probability(arguments, unit.Line().Settings().repeat) ? CommandResult() : Usage("double");
}

CommandResult Split(SimulatedUnit& unit, std::string_view arguments, Millis) {
    constexpr int most = 4096;
    int bytes = 0;
    const bool digits = arguments.find_first_not_of("0123456789") == std::string_view::npos;
    if (!digits || !ParseInt(arguments, bytes) || bytes > most) return Usage("split");
    unit.Line().Settings().split = static_cast<std::size_t>(bytes);
    return {};
}

CommandResult Late(SimulatedUnit& unit, std::string_view arguments, Millis) {
    const auto time = ParseDuration(arguments == "0" ? "0s" : arguments);
    if (!time) return Usage("late");
    unit.Line().Settings().late = *time;
    return {};
}

CommandResult Calm(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!arguments.empty()) return Usage("calm");
    unit.Line().Settings() = {};
    unit.Config().messageFaults = {};
    return {};
}

CommandResult Urc(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (arguments.empty()) return Usage("urc");
    if (!unit.UsbUp()) return Failed("the module is not there to say it");
    unit.GetModem().Unsolicited(arguments, now);
    return {};
}

CommandResult Raw(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    const auto bytes = Unescape(arguments);
    if (!bytes || bytes->empty()) return Usage("raw");
    if (!unit.UsbUp()) return Failed("the module is not there to say it");
    unit.Line().Send(*bytes, Burst::Answer, now);
    return {};
}

constexpr ConsoleCommand commands[] = {
    {"noise", "P", "a byte arrives as another one with probability P", Noise},
    {"split", "N", "pieces of N bytes, back to back; 0 = as sent", Split},
    {"late", "TIME", "everything that the modem says arrives later", Late},
    {"lose", "P", "an answer does not arrive with probability P", Lose},
    {"double", "P", "an answer arrives twice with probability P", Double},
    {"calm", "", "line and sending are free of faults again", Calm},
    {"urc", "TEXT", "the modem reports TEXT unasked", Urc},
    {"raw", "BYTES", "the modem sends exactly that; \\r \\n \\t \\\\ \\\" \\xHH", Raw},
};

}  // namespace

std::span<const ConsoleCommand> LineConsole() {
    return commands;
}

}  // namespace varkel::sim
