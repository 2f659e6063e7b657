// The network's side of short messages: keeps what cannot be delivered yet, and what the module has sent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/agenda.h"
#include "simulator/modem.h"
#include "simulator/network_clock.h"
#include "simulator/submit_pdu.h"

namespace varkel::sim {

// A message for the module.
struct IncomingMessage {
    std::string from;   // for those who watch
    std::string pdu;    // octets, well-formed or not
    Millis due = 0;     // not delivered before
    bool held = false;  // it was said that it waits
};

struct MessageCentreHooks {
    // "message to 8613800138000: ..."
    std::function<void(std::string_view)> say;
    // The module has sent this one.
    std::function<void(const SubmittedMessage&)> sent;
};

// Delivers one message after the other, so that each announcement is a chunk of its own on the line.
class MessageCentre {
  public:
    // All of these outlive the centre.
    MessageCentre(Modem& modem, Agenda& agenda, const ModemConfig& config);

    void SetHooks(MessageCentreHooks hooks) { m_hooks = std::move(hooks); }

    // Delivers what can be delivered at once; the rest waits for module, SIM and network, or for a free slot.
    // False, and none is taken, when more than `mostWaiting` would wait.
    bool Take(std::vector<IncomingMessage> messages, Millis now);
    // A slot may be free by now, or the module be in reach.
    void Deliver(Millis now);
    std::size_t Waiting() const { return m_waiting.size(); }
    void ForgetWaiting();

    // A message came from the module. One to `answeringNumber`, whatever country code stands before it, is
    // answered with what the network says to service codes.
    void OnSent(std::string_view pdu, Millis now);
    const std::deque<SubmittedMessage>& Sent() const { return m_sent; }

    // Of the next text that has several parts.
    std::uint8_t NextReference() { return ++m_reference; }
    const NetworkClock& Clock() const { return m_config.clock; }

    static constexpr std::string_view answeringNumber = "10086";
    static constexpr Millis answerTime = 3000;
    static constexpr Millis gap = 40;  // from one delivery to the next: 25 in a second
    static constexpr std::size_t mostWaiting = 400;
    static constexpr std::size_t mostSent = 100;
    static constexpr std::size_t longestShown = 400;  // bytes of a text on a line

  private:
    void Answer(Millis now);
    // Says once why the first message waits.
    void Hold(IncomingMessage& message, std::string_view why);
    void Say(std::string_view text) const;

    Modem& m_modem;
    Agenda& m_agenda;
    const ModemConfig& m_config;
    MessageCentreHooks m_hooks;
    std::deque<IncomingMessage> m_waiting;
    std::deque<SubmittedMessage> m_sent;  // the newest last
    Millis m_nextDelivery = 0;
    std::uint8_t m_reference = 0;
};

}  // namespace varkel::sim
