// Console commands for power, SIM and network.
#include <array>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

// Which of two words it is; -1 for neither.
int OneOf(std::string_view word, std::string_view first, std::string_view second) {
    return word == first ? 0 : word == second ? 1 : -1;
}

bool WholeNumber(std::string_view text, int low, int high, int& number) {
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    return digits && ParseInt(text, number) && number >= low && number <= high;
}

// A card in use is not asked again.
CommandResult AskedLater(SimulatedUnit& unit) {
    return {true, unit.GetModem().Powered() ? "asked for from the next start of the module on" : ""};
}

CommandResult SimInOut(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    const int out = OneOf(arguments, "in", "out");
    if (out < 0) return Usage("sim");
    unit.SetSimInserted(out == 0, now);
    return {};
}

CommandResult Pin(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (arguments == "off") {
        unit.Sim().ForgetPin();
        return {};
    }
    if (!SimCard::WellFormed(SimCode::Pin, arguments))
        return Failed("a PIN has 4 to 8 digits, or is \"off\"");
    unit.Sim().SetPin(arguments);
    return AskedLater(unit);
}

CommandResult Puk(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!SimCard::WellFormed(SimCode::Puk, arguments)) return Failed("a PUK has 8 digits");
    unit.Sim().BlockPin(arguments);
    return AskedLater(unit);
}

CommandResult Ask(SimulatedUnit& unit, std::string_view arguments, Millis) {
    struct Kind {
        std::string_view name;
        SimCode code;
    };
    constexpr std::array<Kind, 4> kinds{{{"pin2", SimCode::Pin2},
                                         {"puk2", SimCode::Puk2},
                                         {"ph-sim", SimCode::PhSim},
                                         {"ph-net", SimCode::PhNet}}};
    const std::string name = TakeWord(arguments).value_or("");
    for (const Kind& kind : kinds) {
        if (name != kind.name) continue;
        if (!SimCard::WellFormed(kind.code, arguments)) return Failed(name + ": not a code of that kind");
        unit.Sim().AskFor(kind.code, arguments);
        return AskedLater(unit);
    }
    return Usage("ask");
}

CommandResult Signal(SimulatedUnit& unit, std::string_view arguments, Millis) {
    Radio& radio = unit.GetModem().Network();
    if (arguments == "vary") {
        radio.Vary();
        return {};
    }
    int rssi = 0;
    const bool well = WholeNumber(arguments, 0, Radio::unknownSignal, rssi);
    if (!well || (rssi > Radio::bestSignal && rssi != Radio::unknownSignal)) return Usage("signal");
    radio.SetSignal(rssi);
    return {};
}

CommandResult Network(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    const int off = OneOf(arguments, "on", "off");
    if (off < 0) return Usage("network");
    unit.GetModem().Network().SetCoverage(off == 0, now);
    return {};
}

CommandResult Module(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (arguments == "restart") {
        if (!unit.GetModem().Powered()) return Failed("the module is off");
        unit.CrashModule(now);
        return {};
    }
    const int off = OneOf(arguments, "on", "off");
    if (off < 0) return Usage("module");
    unit.SetModulePower(off == 0, now);
    return {};
}

CommandResult Usb(SimulatedUnit& unit, std::string_view arguments, Millis) {
    const int down = OneOf(arguments, "up", "down");
    if (down < 0) return Usage("usb");
    unit.SetUsbDown(down == 1);
    return {};
}

CommandResult Vanish(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!arguments.empty()) return Usage("vanish");
    unit.SetVanished(true);
    return {};
}

CommandResult Appear(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!arguments.empty()) return Usage("appear");
    unit.SetVanished(false);
    return {};
}

CommandResult Power(SimulatedUnit& unit, std::string_view arguments, Millis) {
    constexpr int most = 1000;
    int value = 0;
    if (!WholeNumber(arguments, 0, most, value)) return Usage("power");
    unit.Head().supplyValue = value;
    return {};
}

CommandResult Card(SimulatedUnit& unit, std::string_view arguments, Millis) {
    const int out = OneOf(arguments, "in", "out");
    if (out < 0) return Usage("card");
    unit.Head().cardInserted = out == 0;
    return {};
}

CommandResult Driver(SimulatedUnit& unit, std::string_view arguments, Millis) {
    const int works = OneOf(TakeWord(arguments).value_or(""), "fail", "work");
    const DrvEntry* const entry = HeadUnit::Find(arguments);
    if (works < 0) return Usage("driver");
    if (!entry) return Failed("\"" + Visible(arguments, 40) + "\" is no function of the driver library");
    unit.Head().Failing(entry->function) = works == 0;
    return {};
}

constexpr ConsoleCommand commands[] = {
    {"sim", "in|out", "put the SIM card in, take it out", SimInOut},
    {"pin", "CODE|off", "the SIM's PIN, asked for at the next start; or none", Pin},
    {"puk", "CODE", "the PIN is blocked, this PUK frees it", Puk},
    {"ask", "pin2|puk2|ph-sim|ph-net CODE", "another code that the next start asks for", Ask},
    {"signal", "0..31|99|vary", "the strength that AT+CSQ reports", Signal},
    {"network", "on|off", "coverage", Network},
    {"module", "on|off|restart", "power of the module behind the driver's back; a crash", Module},
    {"usb", "up|down", "the USB link: the driver reports it, bytes pass", Usb},
    {"vanish", "", "the module's device is gone from the bus", Vanish},
    {"appear", "", "it is back", Appear},
    {"power", "N", "the supply value; 19 and less is too little for a call", Power},
    {"card", "in|out", "the SD card", Card},
    {"driver", "fail|work FUNCTION", "a function of the driver library fails", Driver},
};

}  // namespace

std::span<const ConsoleCommand> UnitConsole() {
    return commands;
}

}  // namespace varkel::sim
