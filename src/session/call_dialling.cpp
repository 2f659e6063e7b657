// What the user does with calls.
#include "platform/text.h"
#include "session/call_control.h"

namespace varkel {

namespace {

constexpr int enoughPower = 20;
constexpr Ticks redialDebounce = 1000;
constexpr Ticks slice = 20;

}  // namespace

bool CallControl::EnoughPower() {
    int value = 0;
    // A driver that cannot tell is no reason not to call.
    if (!m_session.platform.driver.GetCurrentPowerValue(value) || value >= enoughPower) return true;
    m_session.screens.Warn(WarnCode::LowPower);
    return false;
}

bool CallControl::MayDial(std::string_view number, DialString& dialled) {
    Screens& screens = m_session.screens;
    if (!EnoughPower()) return false;
    if (Trimmed(number).empty()) {
        screens.Warn(WarnCode::NoNumber);
        return false;
    }
    const ValueFault fault = DialString::Parse(Trimmed(number), dialled);
    if (fault != ValueFault::None) {
        screens.Warn(fault == ValueFault::TooLong ? WarnCode::NumberLong : WarnCode::NumberInvalid);
        return false;
    }
    if (m_session.state.MainScreenMode == ScreenMode::Closed) {
        screens.Warn(WarnCode::NetClosed);
        return false;
    }
    return true;
}

// Takes the line for an outgoing call; `how` is the flag that it is known by.
bool CallControl::BeginDial(std::string_view number, bool Call::*how) {
    const std::string name = m_book.NameOf(number);
    const bool free = ChangeCall([how, &name](Call& call) {
        if (call.Any()) return false;
        // Without what a caller has left whom nobody was shown.
        call = Call{};
        call.*how = true;
        call.m_strCallName = name;
        return true;
    });
    if (!free) {
        m_session.screens.Warn(WarnCode::Busy);
        return false;
    }
    m_signal.Stop();
    WatchLink();
    const Language& language = m_session.platform.language;
    std::string text = language.LoadString("IDS_CALLING");
    const std::size_t place = text.find("%s");
    const std::string party = language.Embedded(name);
    text = place == std::string::npos ? text + " " + party : text.replace(place, 2, party);
    m_session.screens.SetStatusText(text);
    m_session.screens.Repaint();
    return true;
}

bool CallControl::Place(std::string_view number, bool Call::*how, MakeDialled record) {
    DialString dialled;
    if (!MayDial(number, dialled) || !BeginDial(dialled.View(), how)) return false;
    if (m_worker.Post([this, dialled, record = std::move(record)] { SendDial(dialled, record); }))
        return true;
    OnCallHooked();
    return false;
}

bool CallControl::Dial(std::string_view number) {
    const std::string dialled(Trimmed(number));
    return Place(number, &Call::m_bOutgoingCall,
                 [this, dialled] { return RecordOf(dialled, m_book.NameOf(dialled)); });
}

bool CallControl::CallBack(const CallRecord& record) {
    const std::string number = Utf8FromNarrow(m_session.platform.codePage, record.number.View());
    if (!EnoughPower() || Trimmed(number).empty()) return false;
    return Place(number, &Call::m_bOutgoingCall, [this, record] {
        return MakeCallRecord(m_session.platform.runtime.GetLocalTime(), record.name.View(),
                              record.number.View());
    });
}

bool CallControl::Redial(std::string_view number) {
    return Place(number, &Call::m_bRedialCall, nullptr);
}

void CallControl::OnRedial() {
    const Ticks now = m_session.platform.runtime.GetTickCount();
    const bool tooSoon = m_dwLastRedial.With([&](Ticks& last) {
        if (m_redialled.exchange(true) && TicksSince(now, last) < redialDebounce) return true;
        last = now;
        return false;
    });
    if (tooSoon) return;
    const std::string number = Utf8FromNarrow(m_session.platform.codePage, m_lists.dialled.NewestNumber());
    m_ShowNumStr.Set(number);
    if (!number.empty()) Redial(number);
}

// Worker. A call that was given up meanwhile is not dialled any more.
void CallControl::SendDial(const DialString& number, const MakeDialled& record) {
    while (m_session.at.OneShotPending() && ModuleReady(m_session) && m_worker.Pause(slice)) {
    }
    const auto wanted = [this] { return m_call.With([](const Call& call) { return call.Outgoing(); }); };
    if (!wanted()) return;
    if (!ModuleReady(m_session)) {
        OnCallHooked();
        return;
    }
    const bool serviceCode = IsServiceCode(number.View());
    if (serviceCode) m_dialogue = Dialogue::Awaited;
    m_turn.OneShot([&] {
        if (!serviceCode) m_session.at.dialPending.Set(m_session.platform.runtime.GetTickCount());
        m_session.at.cmd_dial(number);
    });
    if (record) Append(m_lists.dialled, record());
}

// Sends what ends with a final result that is this request's alone: earlier ones are forgotten first.
template <class SetOneShot, class Send>
void CallControl::Request(SetOneShot setOneShot, Send send) {
    m_worker.Post([this, setOneShot, send] {
        if (!ModuleReady(m_session)) return;
        m_turn.OneShot([&] {
            m_session.at.ClearCallRequests();
            setOneShot().Set(m_session.platform.runtime.GetTickCount());
            send();
        });
    });
}

void CallControl::Answer() {
    const bool rings = m_call.With([](const Call& call) { return call.m_bRinging && !call.established; });
    if (!rings) return;
    m_session.platform.loop.KillTimer(static_cast<TimerId>(SessionTimer::RingLost));
    Request([this]() -> OneShot& { return m_session.at.dialPending; },
            [this] { m_session.at.cmd_answer_call(); });
}

void CallControl::Reject() {
    if (!Busy()) return;
    Request([this]() -> OneShot& { return m_session.at.hangUpPending; },
            [this] { m_session.at.cmd_hangup(); });
}

void CallControl::HangUp() {
    if (!Busy()) return;
    m_bUserHangUp = true;
    Reject();
}

void CallControl::SendTone(std::string_view text) {
    DtmfKey key;
    if (DtmfKey::Parse(text, key) != ValueFault::None) {
        m_session.screens.Warn(WarnCode::NumberInvalid);
        return;
    }
    if (m_session.state.MainScreenMode == ScreenMode::InCall) m_session.at.cmd_send_dtmf(key);
}

void CallControl::ToggleSpeaker() {
    m_worker.Post([this] {
        if (m_session.state.MainScreenMode != ScreenMode::InCall) return;
        int on = 0;
        if (m_session.platform.driver.GetGprsHpSpkStatus(on))
            m_session.platform.driver.SetGprsHpSpkStatus(on == 0 ? 1 : 0);
    });
}

}  // namespace varkel
