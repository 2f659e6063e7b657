#include "session/message_sending.h"

#include <algorithm>
#include <cassert>
#include <optional>
#include <utility>

#include "platform/text.h"

namespace varkel {

namespace {

constexpr std::size_t longestText = 121;  // bytes of the display code page
constexpr Ticks longestPrompt = 10'000;
constexpr Ticks slice = 20;
constexpr Ticks tipTime = 1000;
constexpr TimerId tipTimer = static_cast<TimerId>(SessionTimer::SendTip);

SendTip TipOf(SendState state) {
    switch (state) {
        case SendState::Sending: return SendTip::Sending;
        case SendState::Sent: return SendTip::Sent;
        case SendState::Failed: return SendTip::Failed;
    }
    return SendTip::Hidden;
}

}  // namespace

ValueFault MakeDestination(std::string_view number, std::string_view countryCode,
                           FixedText<16>& destination) {
    constexpr std::size_t longest = 15;
    std::string digits;
    for (const char c : number) {
        if (!DialRules::IsSeparator(c)) digits += c;
        if (digits.size() > longest + 1) return ValueFault::TooLong;
    }
    const bool international = digits.starts_with('+');
    if (international) digits.erase(0, 1);
    if (digits.empty() || !std::all_of(digits.begin(), digits.end(), IsDigit)) return ValueFault::Invalid;
    if (!international && !digits.starts_with(countryCode)) digits.insert(0, countryCode);
    if (digits.size() > longest) return ValueFault::TooLong;
    destination.Assign(digits);
    return ValueFault::None;
}

MessageSending::MessageSending(Session& session, CommandTurn& turn, SignalWatch& signal, MessageBox& outbox,
                               Worker& worker)
    : m_session(session), m_turn(turn), m_signal(signal), m_outbox(outbox), m_worker(worker) {}

bool MessageSending::SendSMDll(std::string_view number, std::string_view text, Sender sender) {
    const bool accepted =
        Accept(number, NarrowFromUtf8(m_session.platform.codePage, text, longestText), sender);
    if (!accepted && sender == Sender::Client && m_sent) m_sent->Reset();
    return accepted;
}

bool MessageSending::SendWritten(std::string_view number, std::string_view text) {
    constexpr std::size_t longest = sizeof(SmsRecord::szContent) - 1;
    return Accept(number, NarrowFromUtf8(m_session.platform.codePage, text, longest), Sender::User);
}

bool MessageSending::CheckNumber(std::string_view number, FixedText<16>& destination) const {
    Screens& screens = m_session.screens;
    if (Trimmed(number).empty()) {
        screens.Warn(WarnCode::NoNumber);
        return false;
    }
    const ValueFault fault = MakeDestination(Trimmed(number), m_session.options.countryCode, destination);
    if (fault != ValueFault::None) {
        screens.Warn(fault == ValueFault::TooLong ? WarnCode::NumberLong : WarnCode::NumberInvalid);
        return false;
    }
    return true;
}

bool MessageSending::Accept(std::string_view number, std::string_view narrowText, Sender sender) {
    FixedText<16> destination;
    if (!CheckNumber(number, destination)) return false;
    Screens& screens = m_session.screens;
    const CodePage& page = m_session.platform.codePage;
    const SmsPduRecord message = Compose(destination.View(), narrowText);
    FixedText<512> hex;
    PduText pdu;
    const bool fits =
        EncodeSubmitPdu(page, message, hex) != 0 && PduText::Parse(hex.View(), pdu) == ValueFault::None;
    const bool queued = fits && Queue({pdu, sender});
    if (fits && !queued && sender == Sender::Client) return false;
    if (!queued) screens.Warn(fits ? WarnCode::Busy : WarnCode::SmsCharacter);
    // Before any result is known: a message that cannot go out stays in the outbox.
    Record(message);
    return queued;
}

SmsPduRecord MessageSending::Compose(std::string_view destination, std::string_view text) const {
    const CodePage& page = m_session.platform.codePage;
    SmsPduRecord message;
    // Without a usable centre the module's own one serves; the destination is one of ours, and good.
    if (MakeSubmitRecord(page, m_center.Get().View(), destination, text, message) != ValueFault::None) {
        [[maybe_unused]] const ValueFault fault = MakeSubmitRecord(page, "", destination, text, message);
        assert(fault == ValueFault::None);
    }
    return message;
}

bool MessageSending::Queue(const Waiting& message) {
    return m_waiting.With([&](std::deque<Waiting>& waiting) {
        if (waiting.size() >= mostWaiting) return false;
        waiting.push_back(message);
        if (message.sender == Sender::Client) m_session.state.m_externalClient = true;
        return true;
    });
}

void MessageSending::Record(const SmsPduRecord& message) {
    const SmsTime time = SmsTimeFromLocal(m_session.platform.runtime.GetLocalTime());
    const StoreResult result = m_outbox.WriteSmsRecord(
        MakeSmsRecord(time, message.TPA.View(), message.TP_UD.View(), SmsState::Opened));
    if (result == StoreResult::VolumeFull) m_session.screens.Warn(WarnCode::NandFull);
    m_session.screens.Repaint();
}

void MessageSending::OnMsCenterNo(std::string_view text) {
    constexpr std::size_t numberAt = 8;  // behind +CSCA: "
    m_session.platform.log.Trace("[BTNEV]OnMsCenterNo");
    m_center.Set({});
    const std::string_view line = text.substr(0, text.find("\r\n"));
    if (line.size() < numberAt) return;
    std::string_view token = Trimmed(line.substr(numberAt));
    token = token.substr(0, token.find_first_of(" \t"));
    token = token.substr(0, token.find('"'));
    CenterNumber number;
    if (CenterNumber::Parse(token, number) != ValueFault::None) {
        m_session.platform.log.Trace("[OnMsCenterNo]--no usable number");
        return;
    }
    SetServiceCenter(number);
    m_session.at.cmd_set_mscenter(number);
}

bool MessageSending::SendNext() {
    const auto next = m_waiting.With([](std::deque<Waiting>& waiting) -> std::optional<Waiting> {
        if (waiting.empty()) return std::nullopt;
        const Waiting first = waiting.front();
        waiting.pop_front();
        return first;
    });
    if (!next) return false;
    m_sender = next->sender;
    if (!Send(next->pdu)) {
        m_session.at.AbandonMessage();
        ReportFailure(ServesClient());
    }
    m_stage = Stage::Idle;
    if (ServesClient()) EndService();
    return true;
}

// Another program has its result. No tip was shown, whose end would let the poll go on.
void MessageSending::EndService() {
    m_sender = Sender::User;
    m_waiting.With([this](const std::deque<Waiting>& waiting) {
        m_session.state.m_externalClient =
            std::any_of(waiting.begin(), waiting.end(),
                        [](const Waiting& message) { return message.sender == Sender::Client; });
    });
    RestartPoll();
}

// False when it failed and nobody has been told yet.
bool MessageSending::Send(const PduText& pdu) {
    if (!AwaitTurn()) return false;
    m_stage = Stage::AwaitPrompt;
    m_turn.OneShot([&] { m_session.at.cmd_sendms(pdu); });
    return AwaitPrompt() && AwaitResult();
}

bool MessageSending::AwaitTurn() {
    while (m_session.at.OneShotPending()) {
        if (!ModuleReady(m_session) || !m_worker.Pause(slice)) return false;
    }
    return ModuleReady(m_session);
}

bool MessageSending::AwaitPrompt() {
    CATChannel& at = m_session.at;
    const Ticks start = m_session.platform.runtime.GetTickCount();
    while (m_stage == Stage::AwaitPrompt) {
        // A final result instead of the prompt refuses the message.
        const bool refused = !at.AnswerOutstanding(longestPrompt);
        const bool late = TicksSince(m_session.platform.runtime.GetTickCount(), start) >= longestPrompt;
        const bool over = refused || late || !ModuleReady(m_session) || !m_worker.Pause(slice);
        Stage awaited = Stage::AwaitPrompt;
        // The prompt may have come at the last moment.
        if (!over || !m_stage.compare_exchange_strong(awaited, Stage::Idle)) continue;
        m_session.platform.log.Trace("[SendSMDll]--no prompt");
        return false;
    }
    return true;
}

// The parser, or in the end the watch over the one-shots, reports the result.
bool MessageSending::AwaitResult() {
    OneShot& pending = m_session.at.sendPending;
    while (pending.Pending()) {
        if ((!ModuleReady(m_session) || !m_worker.Pause(slice)) && pending.Take()) return false;
    }
    return true;
}

void MessageSending::ReportFailure(bool toClient) {
    if (toClient) {
        if (m_sent) m_sent->Reset();
        return;
    }
    OnSendState(SendState::Failed);
    OnSendTip();
}

void MessageSending::OnSendMsSuc() {
    Stage awaited = Stage::AwaitPrompt;
    if (!m_stage.compare_exchange_strong(awaited, Stage::AwaitResult)) {
        // Whatever asked, it was not for a message of ours: there is none to wait for.
        m_session.platform.log.Trace("[OnSendMsSuc]--a prompt that nobody waits for");
        m_session.at.sendPending.Take();
        return;
    }
    m_signal.Stop();
    m_session.at.WriteMessage2Port();
}

void MessageSending::OnSendState(SendState state) {
    if (state == SendState::Sending && m_stage != Stage::AwaitPrompt) return;
    m_session.screens.ShowSendTip(TipOf(state));
}

void MessageSending::OnSendTip() {
    m_session.platform.loop.SetTimer(tipTimer, tipTime, [this] {
        m_session.platform.loop.KillTimer(tipTimer);
        m_session.screens.ShowSendTip(SendTip::Hidden);
        RestartPoll();
    });
}

void MessageSending::RestartPoll() {
    if (ModuleReady(m_session)) m_signal.Start();
}

}  // namespace varkel
