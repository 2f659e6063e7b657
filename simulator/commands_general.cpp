// Commands of the module itself: line settings, identity, error reports, audio parameters.
#include <algorithm>
#include <array>

#include "simulator/command_table.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

constexpr std::string_view manufacturer = "Varkel";
constexpr std::string_view model = "Simulated unit";
constexpr std::string_view revision = "Revision: 1";

Outcome Say(Exchange& exchange, std::string_view text) {
    exchange.info.emplace_back(text);
    return Outcome::Ok();
}

Outcome Echo(Exchange& exchange) {
    const auto on = exchange.command.Number(0, 0);
    if (!on || *on > 1) return Outcome::Error();
    exchange.modem.Settings().echo = *on;
    return Outcome::Ok();
}

// Answers in words are the only ones there are, and they cannot be switched off.
Outcome OnlyInWords(Exchange& exchange) {
    return exchange.command.Number(0, 1) == 1 ? Outcome::Ok() : Outcome::Error();
}

Outcome NeverQuiet(Exchange& exchange) {
    return exchange.command.Number(0, 0) == 0 ? Outcome::Ok() : Outcome::Error();
}

Outcome Defaults(Exchange& exchange) {
    exchange.modem.Settings() = FactorySettings(exchange.modem.Config().kind);
    return Outcome::Ok();
}

Outcome Information(Exchange& exchange) {
    for (const std::string_view line : {manufacturer, model, revision})
        exchange.info.emplace_back(line);
    return Outcome::Ok();
}

Outcome Manufacturer(Exchange& exchange) {
    return Say(exchange, manufacturer);
}

Outcome Model(Exchange& exchange) {
    return Say(exchange, model);
}

Outcome Revision(Exchange& exchange) {
    return Say(exchange, revision);
}

Outcome SerialNumber(Exchange& exchange) {
    return Say(exchange, exchange.modem.Config().imei);
}

Outcome ReadCharset(Exchange& exchange) {
    return Say(exchange, "+CSCS: \"" + std::string(NameOf(exchange.modem.Settings().charset)) + "\"");
}

Outcome SetCharset(Exchange& exchange) {
    const auto set = CharsetNamed(exchange.command.Text(0));
    if (!set) return Outcome::Error();
    exchange.modem.Settings().charset = *set;
    return Outcome::Ok();
}

Outcome SetBaudRate(Exchange& exchange) {
    constexpr std::array rates{0, 9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};
    const auto rate = exchange.command.Number(0);
    if (!rate || std::find(rates.begin(), rates.end(), *rate) == rates.end()) return Outcome::Error();
    exchange.modem.Settings().baudRate = *rate;
    return Outcome::Ok();
}

Outcome SetStartIndications(Exchange& exchange) {
    const auto on = exchange.command.Number(0);
    if (!on || *on > 1) return Outcome::Error();
    exchange.modem.Settings().startIndications = *on;
    if (*on) exchange.modem.ReportStartAgain(exchange.now);
    return Outcome::Ok();
}

Outcome SetEchoCanceller(Exchange& exchange) {
    const auto parameter = exchange.command.Number(0);
    const auto value = exchange.command.Number(1);
    if (!parameter || !value || exchange.command.arguments.size() != 2) return Outcome::Error();
    if (*parameter >= ModemSettings::mostEchoParameters || *value > 65535) return Outcome::Error();
    exchange.modem.Settings().echoCanceller[*parameter] = *value;
    return Outcome::Ok();
}

constexpr CommandEntry commands[] = {
    {.name = "E", .execute = Echo},
    {.name = "V", .execute = OnlyInWords},
    {.name = "Q", .execute = NeverQuiet},
    {.name = "Z", .execute = Defaults},
    {.name = "&F", .execute = Defaults},
    {.name = "I", .execute = Information},
    {.name = "+CGMI", .execute = Manufacturer},
    {.name = "+CGMM", .execute = Model},
    {.name = "+CGMR", .execute = Revision},
    {.name = "+CGSN", .execute = SerialNumber},
    {.name = "+GSN", .execute = SerialNumber},
    {.name = "+CMEE", .setting = &ModemSettings::errors, .high = 2},
    {.name = "+CSCS", .read = ReadCharset, .set = SetCharset, .ranges = "(\"GSM\",\"UCS2\",\"IRA\")"},
    {.name = "+IPR",
     .set = SetBaudRate,
     .setting = &ModemSettings::baudRate,
     .ranges = "(0,9600,19200,38400,57600,115200,230400,460800,921600)"},
    {.name = "+URCIND", .set = SetStartIndications, .setting = &ModemSettings::startIndications, .own = true},
    {.name = "+CLVL", .setting = &ModemSettings::volume, .high = 5},
    {.name = "+SIDET", .setting = &ModemSettings::sidetone, .high = 15, .own = true},
    {.name = "+ECHO", .set = SetEchoCanceller, .ranges = "(0-63),(0-65535)", .own = true},
};

}  // namespace

std::span<const CommandEntry> GeneralCommands() {
    return commands;
}

}  // namespace varkel::sim
