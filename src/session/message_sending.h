// Sent messages: the outbox, the PDU, the prompt and the result; and the service centre's number.
#pragma once

#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "modem/at_values.h"
#include "modem/sms_pdu.h"
#include "platform/fixed_text.h"
#include "platform/guarded.h"
#include "session/command_turn.h"
#include "session/session.h"
#include "session/signal_watch.h"
#include "session/worker.h"
#include "stores/message_box.h"

namespace varkel {

// The destination of a message as its PDU holds it: digits, without "+". A number with "+" is international
// already; in front of any other one that does not begin with the country code, the code is put. Separators
// are left out. TooLong above 15 digits, Invalid when it holds anything else or nothing at all.
[[nodiscard]] ValueFault MakeDestination(std::string_view number, std::string_view countryCode,
                                         FixedText<16>& destination);

// On whose behalf a message is sent.
enum class Sender { User, Client };

class MessageSending {
  public:
    MessageSending(Session& session, CommandTurn& turn, SignalWatch& signal, MessageBox& outbox,
                   Worker& worker);

    // The event by which a program for which the controller works learns the result. Before the first
    // message.
    void SetResultEvent(std::shared_ptr<Event> sent) { m_sent = std::move(sent); }

    // Sends a message and writes it into the outbox at once; the result shows in the tip. False when it is
    // not sent, and the user has been told why; with a good number it stands in the outbox all the same. Both
    // texts are UTF-8; a text of more than 121 bytes of the display code page is cut there. A program learns
    // the result by its event, and what it sends above the limit leaves no trace. Any thread but the read
    // thread; takes as long as the flash needs.
    bool SendSMDll(std::string_view number, std::string_view text, Sender sender = Sender::User);
    // The same for what the user wrote on the screen: as much of it as a record holds, which is more than a
    // message ever has.
    bool SendWritten(std::string_view number, std::string_view text);
    // False, and the user has been told why, when no message can go there. Any thread.
    bool CheckNumber(std::string_view number, FixedText<16>& destination) const;
    // The message that is being sent is another program's.
    bool ServesClient() const { return m_sender == Sender::Client; }

    // The service centre that messages are sent through, and another one. Any thread.
    std::string ServiceCenter() const { return std::string(m_center.Get().View()); }
    void SetServiceCenter(const CenterNumber& number) { m_center.Set(FixedText<30>(number.View())); }

    // "+CSCA:". Read thread.
    void OnMsCenterNo(std::string_view text);

    // The prompt. Read thread.
    void OnSendMsSuc();
    // Shows how the message fares. Any thread.
    void OnSendState(SendState state);
    // Takes the tip away after a second, and lets the signal poll go on. Any thread.
    void OnSendTip();

    // There is no result, which counts as failed. Any thread.
    void ReportFailure(bool toClient);

    // The worker's turn: sends the next message and waits for its result. False when there is none.
    bool SendNext();

    static constexpr std::size_t mostWaiting = 16;

  private:
    enum class Stage { Idle, AwaitPrompt, AwaitResult };

    struct Waiting {
        PduText pdu;
        Sender sender = Sender::User;
    };

    bool Accept(std::string_view number, std::string_view narrowText, Sender sender);
    SmsPduRecord Compose(std::string_view destination, std::string_view text) const;
    bool Queue(const Waiting& message);
    void Record(const SmsPduRecord& message);
    bool Send(const PduText& pdu);
    bool AwaitTurn();
    bool AwaitPrompt();
    bool AwaitResult();
    void EndService();
    void RestartPoll();

    Session& m_session;
    CommandTurn& m_turn;
    SignalWatch& m_signal;
    MessageBox& m_outbox;
    Worker& m_worker;
    std::shared_ptr<Event> m_sent;

    Guarded<FixedText<30>> m_center;
    Guarded<std::deque<Waiting>> m_waiting;
    std::atomic<Stage> m_stage = Stage::Idle;
    std::atomic<Sender> m_sender = Sender::User;  // of the message that is being sent
};

}  // namespace varkel
