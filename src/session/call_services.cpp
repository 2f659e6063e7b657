// Service codes, which are no calls: what the network says to them, and what the user replies.
#include "modem/ussd_answer.h"
#include "session/call_control.h"

namespace varkel {

namespace {

constexpr Ticks characterSetPause = 200;
constexpr Ticks slice = 20;
constexpr int endDialogue = 0;  // the mode of +CUSD

}  // namespace

void CallControl::OnUssd(std::string_view text) {
    m_session.platform.log.Trace("[BTNEV]OnUssd");
    const UssdAnswer answer = ParseUssdAnswer(text, m_session.platform.codePage);
    const bool replyExpected = answer.status == UssdStatus::ReplyExpected;
    const bool inDialogue =
        m_dialogue.exchange(replyExpected ? Dialogue::ReplyExpected : Dialogue::None) != Dialogue::None;
    EndServiceCode();
    m_session.screens.Repaint();
    if (!answer.text.empty()) {
        m_session.screens.ShowUssd(answer.text, replyExpected);
    } else if (inDialogue) {
        answer.Failed() ? m_session.screens.Warn(WarnCode::NetOpenFailed)
                        : m_session.screens.ShowUssd("", replyExpected);
    }
}

void CallControl::OnServiceCodeFailed() {
    m_dialogue = Dialogue::None;
    EndServiceCode();
    m_session.screens.Repaint();
    m_session.screens.Warn(WarnCode::NetOpenFailed);
}

void CallControl::EndServiceCode() {
    if (!m_session.at.DialWasServiceCode()) return;
    const bool ended = ChangeCall([](Call& call) {
        if (!call.Outgoing() || call.established) return false;
        call.m_bOutgoingCall = call.m_bRedialCall = false;
        return true;
    });
    if (!ended) return;
    m_session.at.dialPending.Take();
    m_session.screens.SetStatusText("");
    RestartPoll();
}

bool CallControl::AnswerUssd(std::string_view text) {
    UssdString reply;
    const ValueFault fault = UssdString::Parse(text, reply);
    if (fault != ValueFault::None) {
        m_session.screens.Warn(static_cast<WarnCode>(fault));
        return false;
    }
    if (m_session.state.MainScreenMode == ScreenMode::Closed) {
        m_session.screens.Warn(WarnCode::NetClosed);
        return false;
    }
    m_dialogue = Dialogue::Awaited;
    if (m_worker.Post([this, reply] { SendReply(reply); })) return true;
    m_dialogue = Dialogue::None;
    return false;
}

// Worker. A dialogue that was left meanwhile gets no reply any more.
void CallControl::SendReply(const UssdString& reply) {
    while (m_session.at.OneShotPending() && ModuleReady(m_session) && m_worker.Pause(slice)) {
    }
    if (!AwaitsUssd()) return;
    if (!ModuleReady(m_session)) {
        OnServiceCodeFailed();
        return;
    }
    m_turn.OneShot([&] { m_session.at.RequestUssd(reply); });
}

void CallControl::LeaveUssd() {
    if (m_dialogue != Dialogue::None) CancelUssd();
}

// What the network still says is of no interest.
void CallControl::CancelUssd() {
    m_dialogue = Dialogue::None;
    m_session.at.ussdPending.Take();
    m_worker.Post([this] {
        if (!ModuleReady(m_session)) return;
        m_session.at.cmd_set_cscs_gsm();
        m_worker.Pause(characterSetPause);
        UssdString cancel;
        if (UssdString::Parse("*", cancel) == ValueFault::None) m_session.at.cmd_ussd(endDialogue, cancel);
    });
}

}  // namespace varkel
