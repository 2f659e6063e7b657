// Commands of voice calls and of service codes (3GPP TS 27.007, 6, 7.6, 7.15; ITU-T V.250, 6.3).
#include <algorithm>
#include <array>

#include "simulator/command_table.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

constexpr std::string_view dialDigits = "0123456789*#+ABCDabcdpPwW,TtIiGg -()./";
constexpr std::string_view toneDigits = "0123456789*#ABCD";

bool Emergency(std::string_view number) {
    constexpr std::array<std::string_view, 6> numbers{"112", "911", "000", "118", "119", "999"};
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

// The number without the marks that only help reading (V.250, 6.3.1).
std::string WithoutSeparators(std::string number) {
    std::erase_if(number,
                  [](char c) { return std::string_view(" -()./").find(c) != std::string_view::npos; });
    return number;
}

bool IsServiceCode(std::string_view number) {
    return number.size() > 2 && (number.front() == '*' || number.front() == '#') && number.back() == '#';
}

// A semicolon at the end makes a voice call; data calls find nobody.
Outcome Dial(Exchange& exchange) {
    Modem& modem = exchange.modem;
    std::string number(exchange.command.Text(0));
    const bool voice = number.ends_with(';');
    if (voice) number.pop_back();
    if (number.find_first_not_of(dialDigits) != std::string::npos) return Outcome::Error();
    number = WithoutSeparators(std::move(number));
    if (number.empty()) return Outcome::Error();
    if (!Emergency(number)) {
        if (const auto fault = modem.CardFault(Needs::ReadyCard)) return Outcome::Fault(*fault);
        if (!modem.Network().Registered()) return Outcome::Fault(Cme::NoNetworkService);
    }
    if (IsServiceCode(number)) {
        modem.RequestUssd(exchange.now);
        return Outcome::Ok();
    }
    if (!voice) return Outcome::NoCarrier();
    const bool dialled = modem.CurrentCall().Dial(number, exchange.now);
    return dialled ? Outcome::Later() : Outcome::Fault(Cme::OperationNotAllowed);
}

Outcome Answer(Exchange& exchange) {
    return exchange.modem.CurrentCall().Answer() ? Outcome::Ok() : Outcome::NoCarrier();
}

// Hanging up without a call is no mistake.
Outcome HangUp(Exchange& exchange) {
    exchange.modem.CurrentCall().HangUp(exchange.now);
    return Outcome::Ok();
}

Outcome ListCalls(Exchange& exchange) {
    const VoiceCall& call = exchange.modem.CurrentCall();
    constexpr std::array states{"", "4", "3", "0"};  // 27.007, 7.18, in the order of CallPhase
    if (call.Phase() == CallPhase::Idle) return Outcome::Ok();
    exchange.info.push_back("+CLCC: 1," + std::to_string(call.Outgoing() ? 0 : 1) + "," +
                            states[static_cast<std::size_t>(call.Phase())] + ",0,0,\"" + call.Number() +
                            "\"," + (call.Number().starts_with('+') ? "145" : "129"));
    return Outcome::Ok();
}

Outcome SendTone(Exchange& exchange) {
    const std::string_view tone = exchange.command.Text(0);
    if (tone.size() != 1 || toneDigits.find(tone) == std::string_view::npos) return Outcome::Error();
    const bool sent = exchange.modem.CurrentCall().SendTone(tone.front());
    return sent ? Outcome::Ok() : Outcome::Fault(Cme::OperationNotAllowed);
}

Outcome ReadCallerNumber(Exchange& exchange) {
    exchange.info.push_back("+CLIP: " + std::to_string(exchange.modem.Settings().callerNumber) + ",1");
    return Outcome::Ok();
}

// 0 and 1 switch the report of the answer, 2 ends the dialogue; a string goes to the network.
Outcome ServiceCode(Exchange& exchange) {
    Modem& modem = exchange.modem;
    const AtCommand& command = exchange.command;
    constexpr int endDialogue = 2;
    const auto mode = command.Number(0, 0);
    if (!mode || *mode > endDialogue || command.arguments.size() > 3) return Outcome::Error();
    if (*mode != 1) modem.CancelUssd();
    if (*mode == endDialogue) return Outcome::Ok();
    if (const auto fault = modem.CardFault(Needs::ReadyCard)) return Outcome::Fault(*fault);
    modem.Settings().ussdReports = *mode;
    if (command.arguments.size() < 2 || *mode == 0) return Outcome::Ok();
    const auto text = FromLine(command.Text(1), modem.Settings().charset);
    if (!text || text->empty()) return Outcome::Fault(Cme::InvalidText);
    if (!modem.Network().Registered()) return Outcome::Fault(Cme::NoNetworkService);
    modem.RequestUssd(exchange.now);
    return Outcome::Ok();
}

constexpr CommandEntry commands[] = {
    {.name = "D", .pace = Pace::Dial, .execute = Dial},
    {.name = "A", .pace = Pace::Dial, .execute = Answer},
    {.name = "H", .execute = HangUp},
    {.name = "+CHUP", .execute = HangUp},
    {.name = "+CLCC", .execute = ListCalls},
    {.name = "+VTS", .set = SendTone, .ranges = "(0-9,A-D,*,#)"},
    {.name = "+CLIP", .read = ReadCallerNumber, .setting = &ModemSettings::callerNumber},
    {.name = "+CUSD", .set = ServiceCode, .setting = &ModemSettings::ussdReports, .ranges = "(0-2)"},
};

}  // namespace

std::span<const CommandEntry> CallCommands() {
    return commands;
}

}  // namespace varkel::sim
