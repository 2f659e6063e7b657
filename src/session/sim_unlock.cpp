#include "session/sim_unlock.h"

#include <optional>
#include <string>

#include "platform/text.h"

namespace varkel {

namespace {

constexpr Ticks suspectLimit = 40'000;
constexpr Ticks slice = 10;
constexpr Ticks answerPause = 500;

std::optional<WarnCode> WarningFor(ValueFault fault) {
    if (fault == ValueFault::None) return std::nullopt;
    return static_cast<WarnCode>(fault);
}

std::string WithoutBlanks(std::string_view text) {
    std::string rest;
    for (const char c : text) {
        if (c != ' ') rest.push_back(c);
    }
    return rest;
}

ValueFault ParsePin(SimState asked, std::string_view text, PhCode& code) {
    const bool personalisation = asked == SimState::PhSimPin || asked == SimState::PhNetPin;
    if (!personalisation && text.size() > PinCode::longest) return ValueFault::TooLong;
    return PhCode::Parse(text, code);
}

const char* PinLabel(SimState asked) {
    switch (asked) {
        case SimState::Pin2: return "pin2:";
        case SimState::PhSimPin: return "PH-SIM pin:";
        case SimState::PhNetPin: return "PH-NET pin:";
        default: return "pin:";
    }
}

constexpr const char* title = "Please Input:";

}  // namespace

bool SimUnlock::Fail(const char* logLine, WarnCode code) {
    m_session.platform.log.Trace("%s", logLine);
    if (!m_session.state.g_bSilentOpen) m_session.screens.Warn(code);
    return false;
}

void SimUnlock::QuerySim() {
    m_session.at.cmd_at_cpin();
}

bool SimUnlock::Run() {
    if (!m_session.state.g_bSimOk && !QuerySuspectSim()) return false;
    m_session.screens.ShowOpenStep(OpenStep::AwaitSim, 0);
    for (;;) {
        m_session.platform.log.Trace("[BTNEV]wait for sim return!");
        const SimState asked = m_session.state.m_nCpinState;
        switch (asked) {
            case SimState::Ready:
                m_session.platform.log.Trace("[BTNEV]wait for sim ----break!");
                m_session.state.g_bSimOk = true;
                return true;
            case SimState::Pin:
            case SimState::Pin2:
            case SimState::PhSimPin:
            case SimState::PhNetPin:
                if (!EnterPin(asked)) return false;
                break;
            case SimState::Puk:
            case SimState::Puk2:
                if (!EnterPuk(asked)) return false;
                break;
            case SimState::Unknown: break;
        }
        QuerySim();
        if (!m_waits.Pause(answerPause)) return false;
    }
}

// The module has said that the SIM cannot be used: what it says of its state decides.
bool SimUnlock::QuerySuspectSim() {
    SessionState& state = m_session.state;
    m_session.platform.log.Trace("[BTNEV]NO SIM");
    QuerySim();
    const auto answered = [this, &state] {
        if (state.m_nCpinState != SimState::Unknown) return true;
        const bool refused = m_session.at.TakeCpinRefused();
        const bool busy = m_session.at.TakeSimBusy();
        if (refused || busy) QuerySim();
        return false;
    };
    const Ticks start = m_session.platform.runtime.GetTickCount();
    switch (m_waits.Until(answered, start, suspectLimit, slice)) {
        case OpenWaits::Outcome::Cancelled: return false;
        case OpenWaits::Outcome::TimedOut: return Fail("[BTNEV]SIM overtime!", WarnCode::NetOpenFailed);
        case OpenWaits::Outcome::Done: break;
    }
    if (state.m_nCpinState != SimState::Ready) return true;
    return Fail("[BTNEV]SIM no connect well!", WarnCode::SimDisconnect);
}

bool SimUnlock::EnterPin(SimState asked) {
    SessionState& state = m_session.state;
    state.m_nCpinState = SimState::Unknown;
    const CodeRequest request{
        .title = title,
        .firstLabel = PinLabel(asked),
        .secondLabel = "",
        .check =
            [asked](std::string_view first, std::string_view) {
                PhCode code;
                return WarningFor(ParsePin(asked, first, code));
            },
        .cancelled = [this] { return m_waits.Cancelled(); },
    };
    const auto entry = m_session.screens.AskCodes(request);
    PhCode code;
    if (!entry || ParsePin(asked, entry->first, code) != ValueFault::None) {
        m_session.platform.log.Trace("[BTNEV]wait for sim ----2!");
        return false;
    }
    state.profile.load()->enterPin(m_session.at, code);
    if (!m_waits.Pause(answerPause)) return false;
    state.m_bPinEntered = true;
    // An answer to an earlier query that came while the user typed is out of date.
    state.m_nCpinState = SimState::Unknown;
    m_session.screens.Repaint();
    return true;
}

bool SimUnlock::EnterPuk(SimState asked) {
    SessionState& state = m_session.state;
    state.m_nCpinState = SimState::Unknown;
    const bool second = asked == SimState::Puk2;
    const auto parse = [](std::string_view first, std::string_view next, PinCode& puk, PinCode& pin) {
        const ValueFault fault = PinCode::Parse(first, puk);
        return fault != ValueFault::None ? fault : PinCode::Parse(WithoutBlanks(next), pin);
    };
    const CodeRequest request{
        .title = title,
        .firstLabel = second ? "puk2:" : "puk:",
        .secondLabel = second ? "pin2:" : "pin:",
        .check =
            [parse](std::string_view first, std::string_view next) {
                PinCode puk;
                PinCode pin;
                return WarningFor(parse(first, next, puk, pin));
            },
        .cancelled = [this] { return m_waits.Cancelled(); },
    };
    const auto entry = m_session.screens.AskCodes(request);
    PinCode puk;
    PinCode pin;
    if (!entry || parse(entry->first, entry->second, puk, pin) != ValueFault::None) {
        m_session.platform.log.Trace("[BTNEV]wait for sim ----3!");
        return false;
    }
    state.profile.load()->enterPuk(m_session.at, puk, pin);
    if (!m_waits.Pause(answerPause)) return false;
    state.m_bPinEntered = true;
    state.m_nCpinState = SimState::Unknown;
    return true;
}

}  // namespace varkel
