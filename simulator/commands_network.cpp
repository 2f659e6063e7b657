// Commands of the radio: signal, registration, mode, packet contexts (3GPP TS 27.007, 7, 8.5, 10.1).
#include <algorithm>
#include <array>

#include "simulator/command_table.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

Outcome Signal(Exchange& exchange) {
    exchange.info.push_back("+CSQ: " + std::to_string(exchange.modem.Network().Rssi()) + ",99");
    return Outcome::Ok();
}

Outcome ReadRegistration(Exchange& exchange) {
    const int state = static_cast<int>(exchange.modem.Network().State());
    exchange.info.push_back("+CREG: " + std::to_string(exchange.modem.Settings().registrationReports) + "," +
                            std::to_string(state));
    return Outcome::Ok();
}

Outcome ReadOperator(Exchange& exchange) {
    Modem& modem = exchange.modem;
    const bool registered = modem.Network().Registered();
    exchange.info.push_back(registered ? "+COPS: 0,2,\"" + modem.Config().operatorCode + "\",2" : "+COPS: 0");
    return Outcome::Ok();
}

// The module chooses the network by itself, maybe of one technology only.
Outcome SelectOperator(Exchange& exchange) {
    constexpr int gsm = 0;
    constexpr int utran = 2;
    const AtCommand& command = exchange.command;
    if (const auto fault = exchange.modem.CardFault(Needs::UnlockedCard)) return Outcome::Fault(*fault);
    const auto technology = command.Number(3, -1);
    const bool known = technology == -1 || technology == gsm || technology == utran;
    if (command.Number(0) != 0 || !known) return Outcome::Fault(Cme::OperationNotSupported);
    exchange.modem.Settings().accessTechnology = *technology;
    return Outcome::Ok();
}

Outcome ReadContexts(Exchange& exchange) {
    for (const auto& [id, context] : exchange.modem.Settings().contexts) {
        exchange.info.push_back("+CGDCONT: " + std::to_string(id) + ",\"" + context.type + "\",\"" +
                                context.accessPoint + "\",\"\",0,0");
    }
    return Outcome::Ok();
}

// A number alone removes the context.
Outcome SetContext(Exchange& exchange) {
    constexpr std::array<std::string_view, 4> types{"IP", "IPV6", "IPV4V6", "PPP"};
    constexpr std::size_t longestName = 100;  // 3GPP TS 23.003, 9.1
    const AtCommand& command = exchange.command;
    auto& contexts = exchange.modem.Settings().contexts;
    const auto id = command.Number(0);
    if (!id || *id < 1 || *id > ModemSettings::mostContexts) return Outcome::Error();
    if (command.arguments.size() == 1) {
        contexts.erase(*id);
        return Outcome::Ok();
    }
    const std::string_view type = command.Text(1);
    const std::string_view accessPoint = command.Text(2);
    const bool known = std::find(types.begin(), types.end(), type) != types.end();
    if (!known || accessPoint.size() > longestName) return Outcome::Fault(Cme::IncorrectParameters);
    contexts[*id] = {std::string(type), std::string(accessPoint)};
    return Outcome::Ok();
}

constexpr CommandEntry commands[] = {
    {.name = "+CSQ", .execute = Signal, .ranges = "(0-31,99),(99)"},
    {.name = "+CREG",
     .read = ReadRegistration,
     .setting = &ModemSettings::registrationReports,
     .ranges = "(0,1)"},
    {.name = "+COPS", .read = ReadOperator, .set = SelectOperator, .ranges = "(0)"},
    {.name = "+MODODR", .setting = &ModemSettings::networkMode, .low = 0, .high = 6, .own = true},
    {.name = "+CGDCONT", .read = ReadContexts, .set = SetContext, .ranges = "(1-16),\"IP\",,,(0),(0)"},
};

}  // namespace

std::span<const CommandEntry> NetworkCommands() {
    return commands;
}

}  // namespace varkel::sim
