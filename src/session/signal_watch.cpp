#include "session/signal_watch.h"

#include "modem/at_values.h"
#include "platform/text.h"
#include "session/main_window.h"

namespace varkel {

namespace {

constexpr Ticks pollPeriod = 10'000;
constexpr Ticks freshAnswer = 2000;  // an answer or command younger than this needs no repeat
constexpr Ticks repeatPeriod = 500;
constexpr int unknownSignal = 99;
constexpr int weakBelow = 5;
constexpr int redialAbove = 7;
constexpr int weakPolls = 3;  // in a row, until the data link is given up

constexpr TimerId pollTimer = static_cast<TimerId>(SessionTimer::Signal);
constexpr TimerId repeatTimer = static_cast<TimerId>(SessionTimer::SignalRepeat);

bool Weak(int value) {
    return value == unknownSignal || value < weakBelow;
}

}  // namespace

int SignalValue(std::string_view csq) {
    int value = 0;
    return ParseInt(csq, value) ? value : 0;
}

int IconLevel(int value) {
    if (value < 4 || value == unknownSignal) return 0;
    if (value < 10) return 1;
    if (value < 16) return 2;
    if (value < 22) return 3;
    return value < 28 ? 4 : 5;
}

int BroadcastLevel(int value) {
    if (Weak(value) || value < 8) return 1;
    if (value < 13) return 2;
    return value < 21 ? 3 : 4;
}

SignalWatch::SignalWatch(Session& session, CommandTurn& turn, DataLink& data)
    : m_session(session),
      m_turn(turn),
      m_data(data),
      m_signalMessage(session.platform.windows.RegisterWindowMessage("UM_QX_SIGNALSTAT")) {}

void SignalWatch::OnSignalStatus(std::string_view text) {
    constexpr std::size_t rssiAt = 6;  // behind "+CSQ: "
    constexpr std::size_t shortest = 5;
    SessionState& state = m_session.state;
    m_session.platform.log.Trace("[BTNEV]OnSignalStatus");
    state.m_bCsqReceived = true;
    FixedText<10> value;
    if (text.size() > shortest) {
        std::size_t at = rssiAt;
        for (int step = 0; step < 2; ++step) {
            if (at < text.size() && IsDigit(text[at])) value.Append(text.substr(at++, 1));
        }
    }
    state.m_szCsq.Set(value);
    if (state.m_bSignalPolling) m_session.screens.SetSignalLevel(IconLevel(SignalValue(value.View())));
    if (!m_awaitingAnswer.exchange(false)) return;
    m_session.platform.loop.KillTimer(repeatTimer);
    m_session.platform.loop.Post([this] { StepLevel(); });
}

void SignalWatch::Start() {
    m_session.state.m_bSignalPolling = true;
    // Beside a request that is under way the first query can wait for the timer.
    [[maybe_unused]] const bool asked = m_turn.TryQuietly([this] { m_session.at.cmd_check_signal(); });
    m_session.platform.loop.SetTimer(pollTimer, pollPeriod, [this] { OnTimer(); });
}

void SignalWatch::Stop() {
    m_session.state.m_bSignalPolling = false;
    m_awaitingAnswer = false;
    m_session.platform.loop.KillTimer(pollTimer);
    m_session.platform.loop.KillTimer(repeatTimer);
}

void SignalWatch::Clear() {
    m_session.state.m_szCsq.Set({});
    m_session.state.m_nLowSignalCount = 0;
    m_session.screens.SetSignalLevel(0);
}

bool SignalWatch::Fresh() const {
    const SessionState& state = m_session.state;
    return state.m_everReceived &&
           TicksSince(m_session.platform.runtime.GetTickCount(), state.m_lastReceive) <= freshAnswer;
}

void SignalWatch::OnTimer() {
    if (m_session.at.TakeUnderVoltage())
        m_session.platform.log.Trace("[SignalWatch]--the module reports under-voltage");
    if (Fresh()) {
        StepLevel();
        return;
    }
    // The level waits for the answer; as long as the modem is silent the query is sent again.
    m_awaitingAnswer = true;
    Ask();
    m_session.platform.loop.SetTimer(repeatTimer, repeatPeriod, [this] { OnRepeatTimer(); });
}

void SignalWatch::OnRepeatTimer() {
    if (!m_awaitingAnswer || !m_session.at.LinkUp()) {
        m_session.platform.loop.KillTimer(repeatTimer);
    } else if (!Fresh()) {
        Ask();
    }
}

void SignalWatch::Ask() {
    CATChannel& at = m_session.at;
    const bool recent =
        TicksSince(m_session.platform.runtime.GetTickCount(), at.LastCommand()) <= freshAnswer;
    if (recent) return;
    // A request that is under way comes first; the repeat asks again.
    [[maybe_unused]] const bool asked = m_turn.TryQuietly([&at] { at.cmd_check_signal(); });
}

void SignalWatch::StepLevel() {
    if (!m_session.state.m_bSignalPolling) return;
    const FixedText<10> csq = m_session.state.m_szCsq.Get();
    const int value = SignalValue(csq.View());
    if (Weak(value)) {
        CountWeak();
    } else if (value > redialAbove) {
        CountGood();
    }
    PostToMainWindow(m_session.platform, m_signalMessage, static_cast<std::uint32_t>(BroadcastLevel(value)),
                     0);
}

void SignalWatch::CountWeak() {
    std::atomic<int>& count = m_session.state.m_nLowSignalCount;
    if (count < weakPolls && ++count == weakPolls) m_data.OnPoorSignal();
}

void SignalWatch::CountGood() {
    std::atomic<int>& count = m_session.state.m_nLowSignalCount;
    if (count != weakPolls) return;
    count = weakPolls - 1;
    m_data.OnGoodSignal();
}

}  // namespace varkel
