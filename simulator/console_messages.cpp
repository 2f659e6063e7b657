// Console commands for short messages: what arrives, what was sent, and what goes wrong with sending.
#include <array>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

namespace {

constexpr std::string_view burstOriginator = "10010";

CommandResult Deliver(SimulatedUnit& unit, std::vector<IncomingMessage> messages, Millis now) {
    const std::size_t most = MessageCentre::mostWaiting;
    if (unit.Messages().Take(std::move(messages), now)) return {};
    return Failed("the network keeps " + std::to_string(most) + " messages at most");
}

DeliverOptions OptionsFor(SimulatedUnit& unit, MessageAddress from, Millis now) {
    MessageCentre& centre = unit.Messages();
    return {std::move(from), unit.Sim().serviceCentre, TimeStampOctets(centre.Clock(), now), std::nullopt,
            centre.NextReference()};
}

// A text in quotes, or all of the line as it is.
std::optional<std::string> TakeText(std::string_view arguments) {
    if (!arguments.starts_with('"')) return std::string(arguments);
    auto text = TakeWord(arguments);
    return arguments.empty() ? text : std::nullopt;
}

std::optional<TextCoding> TakeCoding(std::string_view& arguments) {
    constexpr std::array<std::string_view, 3> names{"7bit", "8bit", "ucs2"};
    std::string_view rest = arguments;
    const auto word = TakeWord(rest);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (word != names[i]) continue;
        arguments = rest;
        return static_cast<TextCoding>(i);
    }
    return std::nullopt;
}

CommandResult Sms(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    const auto coding = TakeCoding(arguments);
    const auto from = TakeWord(arguments);
    const auto text = TakeText(arguments);
    if (!from || !text || arguments.empty()) return Usage("sms");
    auto address = ParseAddress(*from);
    if (!address) return Failed("the sender is a number of 20 digits or a name of 11 letters at most");
    DeliverOptions options = OptionsFor(unit, std::move(*address), now);
    options.coding = coding;
    std::vector<IncomingMessage> messages;
    for (std::string& pdu : DeliverPdus(*text, options))
        messages.push_back({*from, std::move(pdu), now});
    if (messages.empty())
        return Failed("the coding has no place for a character, or the text needs more than " +
                      std::to_string(mostParts) + " messages");
    return Deliver(unit, std::move(messages), now);
}

CommandResult SmsRaw(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    constexpr std::size_t mostOctets = 255;  // more than a SIM keeps of one message
    const auto pdu = BytesFromHex(arguments);
    if (!pdu || pdu->empty() || pdu->size() > mostOctets) return Usage("sms-raw");
    const auto decoded = DecodeDeliver(*pdu);
    return Deliver(unit, {{decoded ? Visible(decoded->from.Text()) : "somewhere", *pdu, now}}, now);
}

CommandResult SmsBurst(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    const auto number = TakeWord(arguments);
    int count = 0;
    if (!number || !ParseInt(*number, count) || count < 1 || count > int{MessageCentre::mostWaiting})
        return Usage("sms-burst");
    const std::string from =
        arguments.empty() ? std::string(burstOriginator) : TakeWord(arguments).value_or("");
    const auto address = ParseAddress(from);
    if (!address || !arguments.empty()) return Usage("sms-burst");
    std::vector<IncomingMessage> messages;
    for (int i = 1; i <= count; ++i) {
        const std::string text = "Message " + std::to_string(i) + " of " + std::to_string(count);
        for (std::string& pdu : DeliverPdus(text, OptionsFor(unit, *address, now)))
            messages.push_back({from, std::move(pdu), now});
    }
    return Deliver(unit, std::move(messages), now);
}

CommandResult Messages(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!arguments.empty()) return Usage("messages");
    constexpr std::array<std::string_view, 4> states{"unread", "read", "unsent", "sent"};
    MessageStore& store = unit.Sim().messages;
    std::string text = std::to_string(store.Used()) + " of " + std::to_string(store.Slots()) + " slots, " +
                       std::to_string(unit.Messages().Waiting()) + " waiting in the network";
    for (int slot = 1; slot <= store.Slots(); ++slot) {
        const StoredMessage* const message = store.Find(slot);
        if (!message) continue;
        text += "\n" + std::to_string(slot) + "  " +
                std::string(states[static_cast<std::size_t>(message->status)]) + "  ";
        const auto decoded = DecodeDeliver(message->pdu);
        text += decoded ? Visible(decoded->from.Text()) + "  " + decoded->time + "  \"" +
                              Visible(decoded->text, MessageCentre::longestShown) + "\""
                        : "no message: " + Visible(HexFromBytes(message->pdu), 80);
    }
    return {true, text};
}

CommandResult SmsClear(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (!arguments.empty()) return Usage("sms-clear");
    unit.Sim().messages.Clear();
    unit.Messages().Deliver(now);
    return {};
}

CommandResult Sent(SimulatedUnit& unit, std::string_view arguments, Millis) {
    if (!arguments.empty()) return Usage("sent");
    std::string text;
    for (const SubmittedMessage& message : unit.Messages().Sent()) {
        text += (text.empty() ? "" : "\n") + Visible(message.number) + "  \"" +
                Visible(message.text, MessageCentre::longestShown) + "\"";
    }
    return {true, text.empty() ? "nothing was sent" : text};
}

CommandResult Count(std::string_view name, std::string_view arguments, int& count) {
    constexpr int most = 1000;
    int number = 0;
    const bool digits = arguments.find_first_not_of("0123456789") == std::string_view::npos;
    if (!digits || !ParseInt(arguments, number) || number > most) return Usage(name);
    count = number;
    return {};
}

CommandResult SmsFail(SimulatedUnit& unit, std::string_view arguments, Millis) {
    return Count("sms-fail", arguments, unit.Config().messageFaults.fail);
}

CommandResult SmsNoPrompt(SimulatedUnit& unit, std::string_view arguments, Millis) {
    return Count("sms-no-prompt", arguments, unit.Config().messageFaults.noPrompt);
}

CommandResult SmsNoResult(SimulatedUnit& unit, std::string_view arguments, Millis) {
    return Count("sms-no-result", arguments, unit.Config().messageFaults.noResult);
}

CommandResult SmsLate(SimulatedUnit& unit, std::string_view arguments, Millis) {
    const auto time = ParseDuration(arguments == "0" ? "0s" : arguments);
    if (!time) return Usage("sms-late");
    unit.Config().messageFaults.late = *time;
    return {};
}

CommandResult Prompt(SimulatedUnit& unit, std::string_view arguments, Millis now) {
    if (!arguments.empty()) return Usage("prompt");
    if (!unit.UsbUp()) return Failed("the module is not there to say it");
    unit.Line().Send("\r\n> ", Burst::Answer, now);
    return {};
}

constexpr ConsoleCommand commands[] = {
    {"sms", "[7bit|8bit|ucs2] FROM TEXT", "a message from a number or a name; long ones in parts", Sms},
    {"sms-raw", "HEX", "a message of exactly these octets, at most 255", SmsRaw},
    {"sms-burst", "N [FROM]", "N messages, 25 in a second, at most 100", SmsBurst},
    {"messages", "", "what the SIM holds", Messages},
    {"sms-clear", "", "the SIM holds none any more", SmsClear},
    {"sent", "", "the last 100 that the module has sent", Sent},
    {"sms-fail", "N", "the next N messages are not sent: +CMS ERROR", SmsFail},
    {"sms-no-prompt", "N", "the next N times the module does not react to AT+CMGS", SmsNoPrompt},
    {"sms-no-result", "N", "the next N messages go out without a result", SmsNoResult},
    {"sms-late", "TIME", "results of sending come later", SmsLate},
    {"prompt", "", "a prompt that nobody asked for", Prompt},
};

}  // namespace

std::span<const ConsoleCommand> MessageConsole() {
    return commands;
}

}  // namespace varkel::sim
