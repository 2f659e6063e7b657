// Console commands for identity, phonebook and times, and for looking at all of it.
#include <algorithm>
#include <array>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

bool Digits(std::string_view text, std::size_t shortest, std::size_t longest) {
    return text.size() >= shortest && text.size() <= longest &&
           text.find_first_not_of("0123456789") == std::string_view::npos;
}

CommandResult Imsi(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!Digits(arguments, 6, 15)) return Failed("an IMSI has 6 to 15 digits");
    unit.Sim().imsi = arguments;
    return {};
}

CommandResult Imei(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!Digits(arguments, 14, 16)) return Failed("an IMEI has 14 to 16 digits");
    unit.Config().imei = arguments;
    return {};
}

CommandResult ListBook(const SimPhonebook& book) {
    std::string text = std::to_string(book.Used()) + " of " + std::to_string(book.Slots()) + " entries";
    for (int slot = 1; slot <= book.Slots(); ++slot) {
        const PhonebookEntry* const entry = book.Find(slot);
        if (!entry) continue;
        text += "\n" + std::to_string(slot) + "  " + entry->number + "  " + Utf8FromUtf16(entry->name);
    }
    return {true, text};
}

CommandResult AddToBook(SimPhonebook& book, std::string_view arguments) {
    const auto name = TakeWord(arguments);
    const auto number = TakeWord(arguments);
    int slot = 0;
    const bool free = arguments.empty();
    if (!name || !number || (!free && !ParseInt(arguments, slot))) return Usage("book");
    if (!free && !book.Has(slot)) return Failed("there is no such slot");
    constexpr int national = 129;
    constexpr int international = 145;
    const int type = number->starts_with('+') ? international : national;
    switch (book.Write(slot, {*number, type, Utf16FromUtf8(*name)})) {
        case PhonebookResult::Done: return {};
        case PhonebookResult::Full: return Failed("the phonebook is full");
        case PhonebookResult::NameTooLong: return Failed("the name is too long for this SIM");
        default: return Failed("that is no number");
    }
}

CommandResult Book(SimulatedUnit& unit, std::string_view arguments, Millis) {
    SimPhonebook& book = unit.Sim().phonebook;
    const std::string what = TakeWord(arguments).value_or("");
    if (what == "list" && arguments.empty()) return ListBook(book);
    if (what == "add") return AddToBook(book, arguments);
    if (what == "clear" && arguments.empty()) {
        for (int slot = 1; slot <= book.Slots(); ++slot)
            static_cast<void>(book.Delete(slot));
        return {};
    }
    int slots = 0;
    const bool size = what == "size" && Digits(arguments, 1, 4) && ParseInt(arguments, slots);
    if (!size || slots > SimPhonebook::mostSlots) return Usage("book");
    book.Resize(slots);
    return {};
}

struct NamedTime {
    std::string_view name;
    Millis ModemTimes::*time;
};

constexpr std::array<NamedTime, 11> namedTimes{{{"boot", &ModemTimes::boot},
                                                {"ready", &ModemTimes::ready},
                                                {"sim-start", &ModemTimes::simStart},
                                                {"sim-init", &ModemTimes::simInit},
                                                {"registration", &ModemTimes::registration},
                                                {"reply", &ModemTimes::reply},
                                                {"sim-reply", &ModemTimes::simReply},
                                                {"dial", &ModemTimes::dial},
                                                {"send", &ModemTimes::send},
                                                {"ussd", &ModemTimes::ussd},
                                                {"data", &ModemTimes::data}}};

CommandResult Time(SimulatedUnit& unit, std::string_view arguments, Millis) {
    ModemTimes& times = unit.Config().times;
    if (arguments.empty()) {
        std::string text;
        for (const NamedTime& named : namedTimes)
            text +=
                (text.empty() ? "" : ", ") + std::string(named.name) + " " + DurationText(times.*named.time);
        return {true, text};
    }
    const std::string name = TakeWord(arguments).value_or("");
    const auto duration = ParseDuration(arguments);
    const auto named = std::find_if(namedTimes.begin(), namedTimes.end(),
                                    [&name](const NamedTime& each) { return each.name == name; });
    if (named == namedTimes.end())
        return Failed("\"" + Visible(name, 40) + "\" is no time; \"time\" lists them");
    if (!duration) return Usage("time");
    times.*named->time = *duration;
    return {};
}

CommandResult StartReport(SimulatedUnit& unit, std::string_view arguments, Millis) {
    constexpr std::array<std::string_view, 4> names{"honest", "always-ready", "always-no-sim", "never"};
    const auto found = std::find(names.begin(), names.end(), arguments);
    if (found == names.end()) return Usage("start-report");
    unit.Config().indication = static_cast<StartIndication>(found - names.begin());
    return {};
}

CommandResult NoSimAnswer(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (arguments != "error" && arguments != "not-ready") return Usage("no-sim-answer");
    unit.Config().notReadyWithoutSim = arguments == "not-ready";
    return {};
}

std::string_view YesNo(bool yes, std::string_view whenYes, std::string_view whenNo) {
    return yes ? whenYes : whenNo;
}

std::string ModuleState(SimulatedUnit& unit) {
    const Modem& modem = unit.GetModem();
    std::string text = "module   ";
    text += !modem.Powered() ? "off" : !modem.Booted() ? "booting" : !modem.Ready() ? "starting" : "running";
    text += unit.Vanished() ? ", vanished" : unit.UsbDown() ? ", USB link down" : "";
    return text;
}

std::string SimState(SimulatedUnit& unit) {
    const SimCard& sim = unit.Sim();
    if (!sim.inserted) return "SIM      none";
    const SimAsks asks = sim.Asks();
    return "SIM      " + std::string(asks == SimAsks::Dead ? "dead" : CpinText(asks)) + ", IMSI " + sim.imsi +
           ", PIN tries " + std::to_string(sim.Tries(SimCode::Pin)) + ", PUK tries " +
           std::to_string(sim.Tries(SimCode::Puk)) + ", " + std::to_string(sim.phonebook.Used()) + " of " +
           std::to_string(sim.phonebook.Slots()) + " entries, " + std::to_string(sim.messages.Used()) +
           " of " + std::to_string(sim.messages.Slots()) + " messages, " +
           std::to_string(unit.Messages().Waiting()) + " waiting";
}

std::string NetworkState(SimulatedUnit& unit) {
    Modem& modem = unit.GetModem();
    const Radio& radio = modem.Network();
    constexpr std::array<std::string_view, 4> calls{"no call", "a call rings", "a number is dialled",
                                                    "a call is up"};
    constexpr std::array<std::string_view, 4> data{"no data call", "a data call is dialled",
                                                   "a data call is negotiated", "the data link is up"};
    return "network  " + std::string(YesNo(radio.Registered(), "registered", "not registered")) +
           ", signal " + std::to_string(radio.Signal()) +
           std::string(YesNo(radio.Varying(), ", varying", "")) + ", " +
           std::string(calls[static_cast<std::size_t>(modem.CurrentCall().Phase())]) + ", " +
           std::string(data[static_cast<std::size_t>(modem.Data().Phase())]);
}

std::string DriverState(SimulatedUnit& unit) {
    const HeadUnit& head = unit.Head();
    return "driver   supply " + std::to_string(head.supplyValue) + ", TMC power " +
           std::to_string(head.tmcPower) + ", suspend locks " + std::to_string(head.keySuspendLocks) + "+" +
           std::to_string(head.autoSuspendLocks) + ", audio " +
           std::string(YesNo(head.audioTo3G != 0, "to the module", "normal")) + ", hands-free " +
           std::to_string(head.handsFree) + ", speaker " + std::to_string(head.speaker) + ", SD card " +
           std::string(YesNo(head.cardInserted != 0, "in", "out"));
}

std::string LineState(SimulatedUnit& unit) {
    const Faults& faults = unit.Line().Settings();
    const auto shown = [](double probability) {
        std::string text = std::to_string(probability);
        text.erase(text.find_last_not_of('0') + 1);
        return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
    };
    return "line     split " + std::to_string(faults.split) + ", noise " + shown(faults.noise) + ", late " +
           DurationText(faults.late) + ", lose " + shown(faults.lose) + ", double " + shown(faults.repeat);
}

CommandResult State(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!arguments.empty()) return Usage("state");
    return {true, ModuleState(unit) + "\n" + SimState(unit) + "\n" + NetworkState(unit) + "\n" +
                      DriverState(unit) + "\n" + LineState(unit)};
}

constexpr ConsoleCommand commands[] = {
    {"imsi", "DIGITS", "the SIM's identity", Imsi},
    {"imei", "DIGITS", "the module's identity", Imei},
    {"book", "list|clear|size N|add NAME NUMBER [SLOT]", "the SIM's phonebook", Book},
    {"time", "[NAME DURATION]", "how long the module takes for what", Time},
    {"start-report", "honest|always-ready|always-no-sim|never", "what +URCIND says", StartReport},
    {"no-sim-answer", "error|not-ready", "what AT+CPIN? says without a card", NoSimAnswer},
    {"state", "", "how things are", State},
};

}  // namespace

std::span<const ConsoleCommand> StateConsole() {
    return commands;
}

}  // namespace varkel::sim
