#include "simulator/message_centre.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"

namespace varkel::sim {

namespace {

constexpr std::size_t countryCode = 3;  // digits at most

}  // namespace

MessageCentre::MessageCentre(Modem& modem, Agenda& agenda, const ModemConfig& config)
    : m_modem(modem), m_agenda(agenda), m_config(config) {
    // Not at once: an announcement would run into the answer or the report that is just being made.
    m_modem.onMessagesPossible = [this](Millis now) {
        m_nextDelivery = std::max(m_nextDelivery, now + gap);
        Deliver(now);
    };
}

bool MessageCentre::Take(std::vector<IncomingMessage> messages, Millis now) {
    if (m_waiting.size() + messages.size() > mostWaiting) return false;
    std::move(messages.begin(), messages.end(), std::back_inserter(m_waiting));
    Deliver(now);
    return true;
}

void MessageCentre::ForgetWaiting() {
    m_waiting.clear();
    m_agenda.Drop(Topic::Messages);
}

void MessageCentre::Deliver(Millis now) {
    m_agenda.Drop(Topic::Messages);
    while (!m_waiting.empty()) {
        const auto next =
            std::min_element(m_waiting.begin(), m_waiting.end(),
                             [](const auto& one, const auto& other) { return one.due < other.due; });
        const Millis time = std::max(next->due, m_nextDelivery);
        if (time > now) {
            m_agenda.At(time, Topic::Messages, [this](Millis then) { Deliver(then); });
            return;
        }
        if (!m_modem.Reachable()) return Hold(*next, "the module is out of reach");
        const auto slot = m_modem.Deliver(next->pdu, now);
        if (!slot) return Hold(*next, "the SIM is full");
        const bool announced = m_modem.Settings().messageReports != 0;
        Say("message from " + next->from + " in slot " + std::to_string(*slot) +
            (announced ? "" : ", not announced"));
        m_waiting.erase(next);
        m_nextDelivery = now + gap;
    }
}

void MessageCentre::Hold(IncomingMessage& message, std::string_view why) {
    if (!std::exchange(message.held, true))
        Say("message from " + message.from + " waits: " + std::string(why));
}

void MessageCentre::OnSent(std::string_view pdu, Millis now) {
    auto message = DecodeSubmit(pdu);
    if (!message) return;
    const TextPart part = message->part.value_or(TextPart());
    Say("message to " + Visible(message->number) +
        (part.total > 1 ? ", part " + std::to_string(part.number) + " of " + std::to_string(part.total)
                        : "") +
        ": \"" + Visible(message->text, longestShown) + "\"");
    if (m_hooks.sent) m_hooks.sent(*message);
    const std::string& to = message->number;
    const bool answered = to.ends_with(answeringNumber) && to.size() <= answeringNumber.size() + countryCode;
    if (m_sent.size() == mostSent) m_sent.pop_front();
    m_sent.push_back(std::move(*message));
    if (answered) Answer(now);
}

void MessageCentre::Answer(Millis now) {
    const std::string from(answeringNumber);
    const DeliverOptions options{{AddressKind::National, from},
                                 m_modem.Sim().serviceCentre,
                                 TimeStampOctets(Clock(), now + answerTime),
                                 std::nullopt,
                                 NextReference()};
    std::vector<IncomingMessage> answer;
    for (std::string& pdu : DeliverPdus(m_config.ussdAnswer, options))
        answer.push_back({from, std::move(pdu), now + answerTime});
    // When too many wait, the answer is lost, as it would be.
    (void)Take(std::move(answer), now);
}

void MessageCentre::Say(std::string_view text) const {
    if (m_hooks.say) m_hooks.say(text);
}

}  // namespace varkel::sim
