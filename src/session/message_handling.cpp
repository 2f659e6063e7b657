#include "session/message_handling.h"

#include <utility>

namespace varkel {

namespace {

// How exactly the steps that wait for their time keep it.
constexpr Ticks stepSlice = 50;

}  // namespace

MessageHandling::MessageHandling(Session& session, CommandTurn& turn, CallControl& calls, SignalWatch& signal)
    : m_session(session),
      m_boxes(session.platform.files, session.platform.log),
      m_receiving(session, turn, calls, m_boxes.inbox, m_worker),
      m_sending(session, turn, signal, m_boxes.outbox, m_worker),
      m_worker(session.platform.runtime, "messages"),
      m_editing(session, m_boxes, m_sending, [this] { Wake(); }) {}

MessageHandling::~MessageHandling() {
    m_session.platform.loop.KillTimer(static_cast<TimerId>(SessionTimer::SendTip));
    if (m_tipWindow != WindowHandle::None) m_session.platform.windows.DestroyWindow(m_tipWindow);
}

// By its title the channel and other programs find the window in which the state of a sent message is shown.
void MessageHandling::Start() {
    m_tipWindow = m_session.platform.windows.CreateWindow("MsgTipDlg", {});
}

void MessageHandling::SetClientEvents(std::shared_ptr<Event> received, std::shared_ptr<Event> sent) {
    m_receiving.SetReceivedEvent(std::move(received));
    m_sending.SetResultEvent(std::move(sent));
}

void MessageHandling::OnMsComeIn(std::string_view text) {
    if (m_receiving.OnMsComeIn(text)) Wake();
}

void MessageHandling::OnCpms(std::string_view text) {
    if (m_receiving.OnCpms(text)) Wake();
}

bool MessageHandling::SendSMDll(std::string_view number, std::string_view text, Sender sender) {
    const bool queued = m_sending.SendSMDll(number, text, sender);
    if (queued) Wake();
    return queued;
}

void MessageHandling::Wake() {
    if (m_woken.exchange(true)) return;
    m_worker.Post([this] {
        m_woken = false;
        Work();
    });
}

// Kept messages come first, then the user's own; the rest has time.
void MessageHandling::Work() {
    while (!m_worker.Ending()) {
        const bool worked = m_receiving.ReadNext() || m_sending.SendNext() || m_receiving.LookNext() ||
                            m_receiving.AnnounceNext() || m_receiving.CleanNext();
        if (worked) continue;
        if (!m_receiving.Waiting()) return;
        m_worker.Pause(stepSlice);
    }
}

}  // namespace varkel
