// Console commands for calls, data and service codes: what the network and the far end of a call do.
#include <algorithm>
#include <array>

#include "platform/text.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

// Digits, maybe behind a "+".
bool CallerNumber(std::string_view text) {
    constexpr std::size_t longest = 20;
    if (text.starts_with('+')) text.remove_prefix(1);
    return !text.empty() && text.size() <= longest &&
           text.find_first_not_of("0123456789*#") == std::string_view::npos;
}

CommandResult Call(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    const bool hidden = arguments == "hidden";
    if (!hidden && !CallerNumber(arguments)) return Usage("call");
    unit.GetModem().CurrentCall().Ring(hidden ? "" : arguments, now);
    return {};
}

CommandResult Hangup(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (!arguments.empty()) return Usage("hangup");
    return unit.GetModem().CurrentCall().FarEndHangsUp(now) ? CommandResult() : Failed("there is no call");
}

CommandResult Dialled(bool carriedOut) {
    return carriedOut ? CommandResult() : Failed("the module dials nobody");
}

CommandResult Answer(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (!arguments.empty()) return Usage("answer");
    return Dialled(unit.GetModem().CurrentCall().FarEndAnswers(now));
}

CommandResult Fail(SimulatedUnit& unit, std::string_view name, std::string_view arguments,
                   std::string_view result, Millis now) {
    if (!arguments.empty()) return Usage(name);
    return Dialled(unit.GetModem().CurrentCall().FarEndFails(result, now));
}

CommandResult Busy(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    return Fail(unit, "busy", arguments, "BUSY", now);
}

CommandResult NoAnswer(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    return Fail(unit, "no-answer", arguments, "NO ANSWER", now);
}

CommandResult NoCarrier(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    return Fail(unit, "no-carrier", arguments, "NO CARRIER", now);
}

CommandResult NoDialtone(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    return Fail(unit, "no-dialtone", arguments, "NO DIALTONE", now);
}

CommandResult UssdAnswer(SimulatedUnit& unit, std::string_view arguments, Millis) {
    unit.Config().ussdAnswer = arguments;
    return {};
}

CommandResult UssdQuestion(SimulatedUnit& unit, std::string_view arguments, Millis) {
    unit.Config().ussdQuestion = arguments;
    return {};
}

CommandResult UssdEnd(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (!arguments.empty()) return Usage("ussd-end");
    unit.GetModem().EndUssd(now);
    return {};
}

constexpr std::array<std::string_view, 4> dataMoods{"normal", "deaf", "silent", "refuse"};

CommandResult Data(SimulatedUnit& unit, std::string_view arguments, Millis) {
    DataCall& call = unit.GetModem().Data();
    if (arguments.empty()) {
        constexpr std::array<std::string_view, 4> phases{"no data call", "dialled", "negotiated", "up"};
        return {true, std::string(phases[static_cast<std::size_t>(call.Phase())]) + ", " +
                          std::string(dataMoods[static_cast<std::size_t>(call.Mood())])};
    }
    if (arguments == "drop") return call.Drop() ? CommandResult() : Failed("there is no data call");
    const auto mood = std::find(dataMoods.begin(), dataMoods.end(), arguments);
    if (mood == dataMoods.end()) return Usage("data");
    call.SetMood(static_cast<DataMood>(mood - dataMoods.begin()));
    return {};
}

constexpr ConsoleCommand commands[] = {
    {"call", "NUMBER|hidden", "somebody calls for a minute; one who was called at 10003 does so by himself",
     Call},
    {"hangup", "", "the far end gives up or hangs up", Hangup},
    {"answer", "", "the dialled number answers; 10000 and 112 do so by themselves after 2 s", Answer},
    {"busy", "", "it is busy, as 10001 always is", Busy},
    {"no-answer", "", "nobody is there, as at 10002 and after 30 s anywhere else", NoAnswer},
    {"no-carrier", "", "the network does not put the call through", NoCarrier},
    {"no-dialtone", "", "the module finds no line", NoDialtone},
    {"data", "[drop|normal|deaf|silent|refuse]",
     "the data link; it is lost; data calls go well, meet no host, get no answer, are refused", Data},
    {"ussd", "TEXT", "what the network answers to service codes, and to messages to 10086", UssdAnswer},
    {"ussd-ask", "[TEXT]", "it asks that first, and the reply gets the answer", UssdQuestion},
    {"ussd-end", "", "it ends the dialogue, as it does after a minute without a reply", UssdEnd},
};

}  // namespace

std::span<const ConsoleCommand> CallConsole() {
    return commands;
}

}  // namespace varkel::sim
