#include "session/one_shot_watch.h"

namespace varkel {

namespace {

constexpr TimerId timer = static_cast<TimerId>(SessionTimer::OneShots);
constexpr Ticks lookPeriod = 1000;

}  // namespace

OneShotWatch::OneShotWatch(Session& session, CallControl& calls, MessageHandling& messages,
                           SignalWatch& signal)
    : m_session(session), m_calls(calls), m_messages(messages), m_signal(signal) {}

void OneShotWatch::Watch() {
    m_session.platform.loop.SetTimer(timer, lookPeriod, [this] { OnTimer(); });
}

bool OneShotWatch::Expired(OneShot& oneShot, Ticks limit, const char* name) {
    const Ticks now = m_session.platform.runtime.GetTickCount();
    if (!oneShot.Pending() || TicksSince(now, oneShot.Since()) < limit || !oneShot.Take()) return false;
    m_session.platform.log.Trace("[OneShotWatch]--%s: no final result, taken as failed", name);
    return true;
}

void OneShotWatch::OnTimer() {
    CATChannel& at = m_session.at;
    bool expired = false;
    if (Expired(at.dialPending, longestResult, "dial")) {
        expired = true;
        at.cmd_hangup();
        m_calls.OnCallHooked();
    }
    if (Expired(at.hangUpPending, longestHangUp, "hang-up")) expired = true;
    const bool servesClient = m_messages.ServesClient();
    if (Expired(at.sendPending, longestResult, "message")) {
        expired = true;
        at.AbandonMessage();
        m_messages.ReportFailure(servesClient);
    }
    if (Expired(at.ussdPending, longestResult, "USSD request")) {
        expired = true;
        m_calls.OnServiceCodeFailed();
    }
    if (expired && ModuleReady(m_session)) m_signal.Start();
    if (!at.OneShotPending()) m_session.platform.loop.KillTimer(timer);
}

}  // namespace varkel
