#include "session/link_test.h"

#include <array>
#include <utility>

#include "session/signal_watch.h"

namespace varkel {

namespace {

constexpr Ticks pingTimeout = 3000;
constexpr std::size_t pingBytes = 64;
constexpr Ticks queryPause = 200;
constexpr Ticks longestAnswer = 2000;
constexpr Ticks slice = 10;
constexpr Ticks hangUpSettles = 1000;
constexpr int poorBelow = 10;
constexpr int enoughPower = 15;
constexpr int hangUpAfter = 3;  // failed tests

}  // namespace

LinkTest::LinkTest(Session& session, CommandTurn& turn, const RasConnection& connection, OpenWaits& waits,
                   std::function<void()> hangUp)
    : m_session(session),
      m_turn(turn),
      m_connection(connection),
      m_waits(waits),
      m_hangUp(std::move(hangUp)) {}

LinkResult LinkTest::PingTest() {
    if (m_connection.Handle() == RasHandle::None) return {LinkStatus::DoesNotWork, Diagnose(0)};
    // The failures of a connection that has ended say nothing of this one.
    const DialNumber connection = m_connection.Current();
    if (connection != m_tested) m_failures = 0;
    m_tested = connection;
    if (AnyHostAnswers()) {
        m_failures = 0;
        return {LinkStatus::Works, LinkReason::None};
    }
    return {LinkStatus::DoesNotWork, Diagnose(++m_failures)};
}

bool LinkTest::AnyHostAnswers() {
    for (const std::string& address : Addresses()) {
        if (m_waits.Cancelled()) return false;
        if (Ping(address)) return true;
    }
    return false;
}

std::vector<std::string> LinkTest::Addresses() const {
    if (!m_session.options.pingAddresses.empty()) return m_session.options.pingAddresses;
    return {m_session.platform.dialUp.PeerAddress(m_connection.Handle())};
}

bool LinkTest::Ping(std::string_view address) {
    std::array<std::byte, pingBytes> data;
    data.fill(std::byte{'*'});
    return !address.empty() && m_session.platform.icmp.IcmpSendEcho(address, data, pingTimeout);
}

LinkReason LinkTest::Diagnose(int failures) {
    int strength = 0;
    const bool answered = AskModem(strength);
    const SessionState& state = m_session.state;
    if (state.m_bCallActive) return LinkReason::CallOrPower;
    if (!answered) return ReasonOfSilence();
    if (state.m_simPresence == SimPresence::Absent || !state.g_bSimOk) return LinkReason::Sim;
    if (strength < poorBelow) return LinkReason::PoorSignal;
    if (failures == hangUpAfter) {
        m_hangUp();
        (void)m_waits.Pause(hangUpSettles);
    }
    return LinkReason::None;
}

bool LinkTest::AskModem(int& strength) {
    SessionState& state = m_session.state;
    state.m_bCsqReceived = false;
    if (!m_turn.AwaitQuietly(m_waits, [this] { m_session.at.cmd_check_signal(); })) return false;
    const Ticks asked = m_session.platform.runtime.GetTickCount();
    if (!m_waits.Pause(queryPause)) return false;
    strength = SignalValue(state.m_szCsq.Get().View());
    const auto answered = [&state] { return state.m_bCsqReceived.load(); };
    if (m_waits.Until(answered, asked, longestAnswer, slice) == OpenWaits::Outcome::Cancelled) return false;
    // Its answer tells whether the SIM is still there.
    return m_turn.AwaitQuietly(m_waits, [this] { m_session.at.cmd_at_cpin(); }) &&
           m_waits.Pause(queryPause) && answered();
}

LinkReason LinkTest::ReasonOfSilence() {
    int power = 0;
    const bool enough = m_session.platform.driver.GetCurrentPowerValue(power) && power >= enoughPower;
    return enough ? LinkReason::NoAnswer : LinkReason::CallOrPower;
}

}  // namespace varkel
