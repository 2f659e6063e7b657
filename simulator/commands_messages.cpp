// Commands of short messages in PDU mode (3GPP TS 27.005).
#include <algorithm>
#include <cstdint>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/command_table.h"
#include "simulator/modem.h"
#include "simulator/submit_pdu.h"

namespace varkel::sim {

namespace {

Outcome ReadCentre(Exchange& exchange) {
    const std::string& number = exchange.modem.Sim().serviceCentre;
    exchange.info.push_back("+CSCA: \"" + number + "\"," + (number.starts_with('+') ? "145" : "129"));
    return Outcome::Ok();
}

Outcome SetCentre(Exchange& exchange) {
    const std::string_view number = exchange.command.Text(0);
    const std::string_view digits = number.starts_with('+') ? number.substr(1) : number;
    constexpr std::size_t mostDigits = 20;
    const bool well = digits.find_first_not_of("0123456789") == std::string_view::npos;
    if (digits.empty() || digits.size() > mostDigits || !well || exchange.command.arguments.size() > 2)
        return Outcome::Fault(Cms::InvalidPduParameter);
    exchange.modem.Sim().serviceCentre = number;
    return Outcome::Ok();
}

std::string Usage(Modem& modem) {
    const MessageStore& store = modem.Sim().messages;
    return std::to_string(store.Used()) + "," + std::to_string(store.Slots());
}

Outcome ReadStorage(Exchange& exchange) {
    const std::string one = "\"SM\"," + Usage(exchange.modem);
    exchange.info.push_back("+CPMS: " + one + "," + one + "," + one);
    return Outcome::Ok();
}

Outcome SetStorage(Exchange& exchange) {
    const auto& arguments = exchange.command.arguments;
    const bool sim = std::all_of(arguments.begin(), arguments.end(),
                                 [](const AtArgument& argument) { return argument.text == "SM"; });
    if (arguments.empty() || arguments.size() > 3 || !sim) return Outcome::Fault(Cms::OperationNotSupported);
    const std::string one = Usage(exchange.modem);
    exchange.info.push_back("+CPMS: " + one + "," + one + "," + one);
    return Outcome::Ok();
}

Outcome ReadFormat(Exchange& exchange) {
    exchange.info.emplace_back("+CMGF: 0");
    return Outcome::Ok();
}

// There is PDU mode only.
Outcome SetFormat(Exchange& exchange) {
    return exchange.command.Number(0, 0) == 0 ? Outcome::Ok() : Outcome::Fault(Cms::OperationNotSupported);
}

Outcome ReadReports(Exchange& exchange) {
    const ModemSettings& settings = exchange.modem.Settings();
    exchange.info.push_back("+CNMI: " + std::to_string(settings.messageMode) + "," +
                            std::to_string(settings.messageReports) + ",0,0,0");
    return Outcome::Ok();
}

// Messages are stored and maybe announced; they are never routed past the store.
Outcome SetReports(Exchange& exchange) {
    const AtCommand& command = exchange.command;
    ModemSettings& settings = exchange.modem.Settings();
    const auto mode = command.Number(0, settings.messageMode);
    const auto reports = command.Number(1, 0);
    const bool well = mode && reports && *mode <= 3 && *reports <= 1 && command.arguments.size() <= 5;
    if (!well) return Outcome::Fault(Cms::OperationNotSupported);
    settings.messageMode = *mode;
    settings.messageReports = *reports;
    return Outcome::Ok();
}

// The header line behind its name, and the PDU; "unread" becomes "read".
void Show(Exchange& exchange, const std::string& header, StoredMessage& message) {
    const auto centre = static_cast<std::uint8_t>(message.pdu.empty() ? '\0' : message.pdu.front());
    const std::size_t octets = message.pdu.size() - std::min(message.pdu.size(), std::size_t{centre} + 1u);
    exchange.info.push_back(header + std::to_string(static_cast<int>(message.status)) + ",," +
                            std::to_string(octets));
    exchange.info.push_back(HexFromBytes(message.pdu));
    if (message.status == MessageStatus::Unread) message.status = MessageStatus::Read;
}

Outcome ReadMessage(Exchange& exchange) {
    const auto slot = exchange.command.Number(0);
    StoredMessage* const message = slot ? exchange.modem.Sim().messages.Find(*slot) : nullptr;
    if (!message || exchange.command.arguments.size() != 1) return Outcome::Fault(Cms::InvalidMemoryIndex);
    Show(exchange, "+CMGR: ", *message);
    return Outcome::Ok();
}

Outcome ListMessages(Exchange& exchange) {
    constexpr int all = 4;
    const auto wanted = exchange.command.Number(0, 0);
    if (!wanted || *wanted > all) return Outcome::Fault(Cms::OperationNotSupported);
    MessageStore& store = exchange.modem.Sim().messages;
    for (int slot = 1; slot <= store.Slots(); ++slot) {
        StoredMessage* const message = store.Find(slot);
        if (!message || (*wanted != all && static_cast<int>(message->status) != *wanted)) continue;
        Show(exchange, "+CMGL: " + std::to_string(slot) + ",", *message);
    }
    return Outcome::Ok();
}

// The second parameter 1 to 4 deletes read; read and sent; these and unsent; all messages.
Outcome DeleteMessages(Exchange& exchange) {
    const auto slot = exchange.command.Number(0);
    const auto which = exchange.command.Number(1, 0);
    MessageStore& store = exchange.modem.Sim().messages;
    if (!slot || !which || *which > 4 || exchange.command.arguments.size() > 2)
        return Outcome::Fault(Cms::InvalidMemoryIndex);
    if (*which == 0) {
        if (!store.Has(*slot)) return Outcome::Fault(Cms::InvalidMemoryIndex);
        store.Delete(*slot);
        return Outcome::Ok();
    }
    for (int each = 1; each <= store.Slots(); ++each) {
        const StoredMessage* const message = store.Find(each);
        if (!message) continue;
        const MessageStatus status = message->status;
        const bool goes = status == MessageStatus::Read || (status == MessageStatus::Sent && *which >= 2) ||
                          (status == MessageStatus::Unsent && *which >= 3) || *which == 4;
        if (goes) store.Delete(each);
    }
    return Outcome::Ok();
}

Outcome DeleteMessage(Exchange& exchange) {
    const Outcome outcome = DeleteMessages(exchange);
    const bool room = outcome.kind == Outcome::Kind::Ok;
    if (room && exchange.modem.onMessagesPossible) exchange.modem.onMessagesPossible(exchange.now);
    return outcome;
}

// Whether a fault of that kind is still to happen; counts it.
bool Happens(int& count) {
    if (count == 0) return false;
    --count;
    return true;
}

Outcome SendPdu(Exchange& exchange, std::string_view text) {
    Modem& modem = exchange.modem;
    const auto pdu = BytesFromHex(Trimmed(text));
    if (!pdu) return Outcome::Fault(Cms::InvalidPduParameter);
    const PduFault fault = CheckSubmitPdu(*pdu, modem.announcedOctets);
    if (fault != PduFault::None) {
        if (modem.Hooks().say) modem.Hooks().say("message refused: " + std::string(TextOf(fault)));
        return Outcome::Fault(Cms::InvalidPduParameter);
    }
    if (!modem.Network().Registered()) return Outcome::Fault(Cms::NoNetworkService);
    if (Happens(modem.Config().messageFaults.fail)) return Outcome::Fault(Cms::NetworkTimeout);
    if (modem.Hooks().sent) modem.Hooks().sent(*pdu, exchange.now);
    exchange.info.push_back("+CMGS: " + std::to_string(modem.NextMessageReference()));
    return Happens(modem.Config().messageFaults.noResult) ? Outcome::Silent() : Outcome::Ok();
}

Outcome SendMessage(Exchange& exchange) {
    // First octet, reference, address, identifiers, validity, length, user data.
    constexpr int longestPdu = 2 + 12 + 2 + 7 + 1 + static_cast<int>(longestUserData);
    const auto octets = exchange.command.Number(0);
    if (!octets || *octets < 1 || *octets > longestPdu) return Outcome::Fault(Cms::InvalidPduParameter);
    if (Happens(exchange.modem.Config().messageFaults.noPrompt)) return Outcome::Silent();
    exchange.modem.announcedOctets = static_cast<std::size_t>(*octets);
    return Outcome::Prompt(SendPdu);
}

constexpr CommandEntry commands[] = {
    {.name = "+CSCA", .needs = Needs::ReadyCard, .pace = Pace::Sim, .read = ReadCentre, .set = SetCentre},
    {.name = "+CPMS",
     .needs = Needs::ReadyCard,
     .pace = Pace::Sim,
     .read = ReadStorage,
     .set = SetStorage,
     .ranges = "(\"SM\"),(\"SM\"),(\"SM\")"},
    {.name = "+CMGF", .read = ReadFormat, .set = SetFormat, .ranges = "(0)"},
    {.name = "+CNMI", .read = ReadReports, .set = SetReports, .ranges = "(0-3),(0,1),(0),(0),(0)"},
    {.name = "+CMGR", .needs = Needs::ReadyCard, .pace = Pace::Sim, .set = ReadMessage},
    {.name = "+CMGL",
     .needs = Needs::ReadyCard,
     .pace = Pace::Sim,
     .execute = ListMessages,
     .set = ListMessages,
     .ranges = "(0-4)"},
    {.name = "+CMGD", .needs = Needs::ReadyCard, .pace = Pace::Sim, .set = DeleteMessage},
    {.name = "+CMGS", .needs = Needs::ReadyCard, .set = SendMessage},
};

}  // namespace

std::span<const CommandEntry> MessageCommands() {
    return commands;
}

}  // namespace varkel::sim
