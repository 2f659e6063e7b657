// Commands of the SIM card: codes, locks, identity.
#include "simulator/command_table.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

Outcome CodeOutcome(const Modem& modem, CodeResult result) {
    switch (result) {
        case CodeResult::Right: return Outcome::Ok();
        case CodeResult::Wrong: return Outcome::Fault(Cme::IncorrectPassword);
        // The card says what it wants now.
        case CodeResult::Blocked:
            return Outcome::Fault(modem.CardFault(Needs::UnlockedCard).value_or(Cme::IncorrectPassword));
        case CodeResult::Refused: break;
    }
    const bool asked = modem.CardFault(Needs::UnlockedCard).has_value();
    return Outcome::Fault(asked ? Cme::IncorrectParameters : Cme::OperationNotAllowed);
}

Outcome ReadPin(Exchange& exchange) {
    Modem& modem = exchange.modem;
    const auto fault = modem.CardFault(Needs::Card);
    if (fault == Cme::SimNotInserted && modem.Config().notReadyWithoutSim) {
        exchange.info.emplace_back("+CPIN: NOT READY");
        return Outcome::Ok();
    }
    if (fault) return Outcome::Fault(*fault);
    const SimAsks asks = modem.Sim().Asks();
    if (asks == SimAsks::Dead) return Outcome::Fault(Cme::SimFailure);
    std::string text(CpinText(asks));
    if (modem.Config().kind == ModemKind::Standard && text.ends_with("pin"))
        text.replace(text.size() - 3, 3, "PIN");
    exchange.info.push_back("+CPIN: " + text);
    return Outcome::Ok();
}

Outcome EnterPin(Exchange& exchange) {
    const AtCommand& command = exchange.command;
    const auto fault = exchange.modem.CardFault(Needs::Card);
    if (fault) return Outcome::Fault(*fault);
    if (command.arguments.size() > 2) return Outcome::Fault(Cme::IncorrectParameters);
    return CodeOutcome(exchange.modem,
                       exchange.modem.EnterCode(command.Text(0), command.Text(1), exchange.now));
}

// The facility "SC" while a code is asked for: the unit's module takes the password as that code, and
// switches the request for the PIN off when that is what it was asked.
Outcome UnlockByFacility(Exchange& exchange, bool on, std::string_view password) {
    SimCard& sim = exchange.modem.Sim();
    const SimAsks asks = sim.Asks();
    const bool codesOnly = exchange.modem.Config().kind == ModemKind::Standard;
    if (codesOnly || asks == SimAsks::Puk || asks == SimAsks::Puk2 || asks == SimAsks::Dead)
        return Outcome::Fault(*exchange.modem.CardFault(Needs::UnlockedCard));
    const CodeResult result = exchange.modem.EnterCode(password, {}, exchange.now);
    if (result == CodeResult::Right && asks == SimAsks::Pin && !on) sim.ForgetPin();
    return CodeOutcome(exchange.modem, result);
}

Outcome SetLock(Exchange& exchange) {
    const AtCommand& command = exchange.command;
    SimCard& sim = exchange.modem.Sim();
    constexpr int query = 2;
    const std::string_view facility = command.Text(0);
    const auto mode = command.Number(1);
    if (!mode || *mode > query || command.arguments.size() > 4) return Outcome::Error();
    if (facility != "SC") {
        const bool lock = facility == "PN" || facility == "PS" || facility == "FD";
        if (!lock || *mode != query) return Outcome::Fault(Cme::OperationNotSupported);
        exchange.info.emplace_back("+CLCK: 0");
        return Outcome::Ok();
    }
    if (*mode == query) {
        exchange.info.push_back("+CLCK: " + std::to_string(sim.PinRequest() ? 1 : 0));
        return Outcome::Ok();
    }
    const std::string_view password = command.Text(2);
    if (sim.Asks() != SimAsks::Nothing) return UnlockByFacility(exchange, *mode == 1, password);
    const CodeResult result = sim.RequestPin(password, *mode == 1);
    if (result == CodeResult::Refused) return Outcome::Fault(Cme::IncorrectParameters);
    return CodeOutcome(exchange.modem, result);
}

Outcome ChangePassword(Exchange& exchange) {
    const AtCommand& command = exchange.command;
    if (command.Text(0) != "SC" || command.arguments.size() != 3)
        return Outcome::Fault(Cme::OperationNotSupported);
    return CodeOutcome(exchange.modem, exchange.modem.Sim().ChangePin(command.Text(1), command.Text(2)));
}

Outcome Subscriber(Exchange& exchange) {
    exchange.info.push_back(exchange.modem.Sim().imsi);
    return Outcome::Ok();
}

Outcome CardNumber(Exchange& exchange) {
    exchange.info.emplace_back("+CCID: \"89860000000000000017\"");
    return Outcome::Ok();
}

Outcome ReadInserted(Exchange& exchange) {
    exchange.info.push_back("+CSMINS: " + std::to_string(exchange.modem.Settings().simReports) + "," +
                            std::to_string(exchange.modem.Sim().inserted ? 1 : 0));
    return Outcome::Ok();
}

constexpr CommandEntry commands[] = {
    {.name = "+CPIN", .pace = Pace::Sim, .read = ReadPin, .set = EnterPin},
    {.name = "+CLCK",
     .needs = Needs::Card,
     .pace = Pace::Sim,
     .set = SetLock,
     .ranges = "(\"SC\",\"FD\",\"PN\",\"PS\")"},
    {.name = "+CPWD",
     .needs = Needs::UnlockedCard,
     .pace = Pace::Sim,
     .set = ChangePassword,
     .ranges = "(\"SC\",8)"},
    {.name = "+CIMI", .needs = Needs::UnlockedCard, .pace = Pace::Sim, .execute = Subscriber},
    {.name = "+CCID", .needs = Needs::Card, .pace = Pace::Sim, .execute = CardNumber},
    {.name = "+CSMINS", .read = ReadInserted, .setting = &ModemSettings::simReports, .own = true},
};

}  // namespace

std::span<const CommandEntry> SimCommands() {
    return commands;
}

}  // namespace varkel::sim
