// What the modem reports of calls, and what follows from it.
#include "session/call_control.h"

#include <algorithm>
#include <utility>

#include "session/main_window.h"

namespace varkel {

namespace {

constexpr Ticks ringLost = 10'000;  // RING comes every 3 to 6 s
constexpr Ticks speechEnds = 500;
constexpr Ticks longestEnd = 5000;
constexpr std::uint32_t mostNewMissed = 9999;  // the registry is anybody's
constexpr Ticks linkPeriod = 1000;
constexpr TimerId linkTimer = static_cast<TimerId>(SessionTimer::CallLink);
constexpr TimerId ringTimer = static_cast<TimerId>(SessionTimer::RingLost);

// Events are raised in the order of their keywords. When the caller's end stands behind the ring in one
// chunk, it has been reported already and the ring is not a new call's.
bool EndedBehind(std::string_view text) {
    return text.find("NO CARRIER") != std::string_view::npos;
}

}  // namespace

CallControl::CallControl(Session& session, CommandTurn& turn, SignalWatch& signal, PhoneBook& book,
                         CallLists& lists)
    : m_session(session),
      m_turn(turn),
      m_signal(signal),
      m_book(book),
      m_lists(lists),
      m_values(CallStateValues(session.platform.registry, session.platform.notices)),
      m_worker(session.platform.runtime, "calls") {}

CallControl::~CallControl() {
    m_session.platform.loop.KillTimer(ringTimer);
    m_session.platform.loop.KillTimer(linkTimer);
}

void CallControl::Start() {
    m_newMissed = static_cast<int>(std::min(m_session.settings.ReadNewMissed(), mostNewMissed));
    [[maybe_unused]] const bool loaded = m_values.Load();
    m_values.Set("CallStatus", "");
    m_values.Set("HookDialed", "0");
    [[maybe_unused]] const bool saved = m_values.Save();
}

void CallControl::RestartPoll() {
    if (ModuleReady(m_session)) m_signal.Start();
}

void CallControl::OnRing(std::string_view text) {
    m_session.platform.log.Trace("[BTNEV]OnRing");
    if (EndedBehind(text)) return;
    SessionState& state = m_session.state;
    if (state.MainScreenMode != ScreenMode::Idle || state.m_bOpenPending) return;
    struct Ring {
        bool acts = false;
        bool callerKnown = false;
    };
    // What was to be dialled and is not sent yet gives way.
    const bool dialled = m_session.at.OneShotPending();
    const Ring ring = ChangeCall([dialled](Call& call) {
        if (call.established) return Ring{};
        if (!dialled) call.m_bOutgoingCall = call.m_bRedialCall = false;
        call.m_bRinging = true;
        return Ring{.acts = true, .callerKnown = !call.m_bClipArmed};
    });
    if (!ring.acts) return;
    Screens& screens = m_session.screens;
    if (screens.HideUssd()) CancelUssd();
    screens.HideWriteMessage();
    Broadcast(m_session.platform, "UM_CALLIN", 0, 0);
    screens.ShowIncomingCall(true);
    if (!ring.callerKnown) m_session.at.cmd_set_clip();
    m_session.platform.sound.PlaySound(
        RingSound(RingKind::Call, m_session.settings.ReadRing(RingKind::Call)));
    m_signal.Stop();
    WatchRing();
}

// A caller who gives up is not always reported.
void CallControl::WatchRing() {
    m_session.platform.loop.SetTimer(ringTimer, ringLost, [this] {
        m_session.platform.loop.KillTimer(ringTimer);
        const bool waits =
            m_call.With([](const Call& call) { return !call.established && !call.Outgoing(); });
        if (waits) OnCallHooked();
    });
}

void CallControl::OnRingNo(std::string_view text) {
    constexpr std::size_t numberAt = 8;  // behind +CLIP: "
    constexpr std::size_t longest = 500;
    m_session.platform.log.Trace("[BTNEV]OnRingNo");
    const std::string_view line = text.substr(0, text.find("\r\n"));
    if (line.size() < numberAt || EndedBehind(text)) return;
    std::string_view number = line.substr(numberAt, longest);
    number = number.substr(0, number.find_first_of(" \t\""));
    const bool taken = m_call.With([](Call& call) { return std::exchange(call.m_bClipArmed, false); });
    if (!taken) return;
    Broadcast(m_session.platform, "_WAV_CALL_STATUS", 0, 1);
    WatchRing();
    const std::string name = number.empty() ? std::string() : m_book.NameOf(number);
    const Call call = m_call.With([&](Call& current) {
        current.m_strCallNumber = number;
        current.m_strCallName = name;
        return current;
    });
    ShowCaller(call);
}

void CallControl::ShowCaller(const Call& call) {
    const std::string rings = m_session.platform.language.LoadString("IDS_RING");
    const std::string name = call.m_strCallName.empty()
                                 ? m_session.platform.language.LoadString("IDS_UNKNOWN_CALLER")
                                 : call.m_strCallName;
    m_session.screens.SetCallerText(m_session.platform.language.Embedded(name) + " " + rings);
}

void CallControl::OnCallEstablished() {
    m_session.platform.log.Trace("[BTNEV]OnCallEstablished");
    if (nCallStatus != Guard::CALL_READY)
        m_session.platform.log.Trace("[BTNEV]OnCallEstablished nCallStatus != CALL_READY");
    struct Change {
        bool acts = false;
        Call before;
    };
    const Change change = ChangeCall([](Call& call) {
        if (!call.Any() || call.established) return Change{};
        const Call before = call;
        call.established = true;
        call.m_bOutgoingCall = call.m_bRedialCall = false;
        return Change{true, before};
    });
    if (!change.acts) return;
    m_session.platform.loop.KillTimer(ringTimer);
    m_worker.Post([this, before = change.before] { Established(before); });
}

void CallControl::Established(const Call& call) {
    SessionState& state = m_session.state;
    if (!ModuleReady(m_session)) return;
    nCallStatus = Guard::Establishing;
    if (state.m_bAudioDelay.exchange(false)) m_worker.Pause(speechEnds);
    KovexDrvApi& driver = m_session.platform.driver;
    driver.SendGprs3gHandfreeMsgToAudio(1);
    driver.SetAudioTo3G(1);
    [[maybe_unused]] const bool loaded = m_values.Load();
    if (call.Outgoing()) {
        m_values.Set("CallStatus", "1");
        m_values.Set("HookDialed", "1");
    } else {
        m_session.screens.ShowIncomingCall(false);
        m_session.platform.sound.PlaySound({});
        m_values.Set("CallStatus", call.m_strCallNumber);
    }
    [[maybe_unused]] const bool saved = m_values.Save();
    ScreenMode idle = ScreenMode::Idle;
    state.MainScreenMode.compare_exchange_strong(idle, ScreenMode::InCall);
    m_session.screens.Repaint();
    if (state.m_bWindowHidden) m_session.screens.PlaceWindow(WindowPlace::TopMost);
    driver.RequireDisableKeySuspend();
    driver.RequireDisableAutoSuspend();
    WatchLink();
    nCallStatus = Guard::CALL_READY;
}

// While a call is dialled or up nothing is polled, so that a lost link would not be noticed.
void CallControl::WatchLink() {
    m_session.platform.loop.SetTimer(linkTimer, linkPeriod, [this] {
        if (!Busy()) {
            m_session.platform.loop.KillTimer(linkTimer);
            return;
        }
        m_worker.Post([this] {
            int present = 0;
            const bool there = m_session.platform.driver.GetUsbHostStatus(present) && present != 0;
            // A command that finds no link brings everything down in order.
            if (!there && Busy()) m_session.at.cmd_check_signal();
        });
    });
}

void CallControl::OnCallHooked() {
    m_session.platform.log.Trace("[BTNEV]OnCallHooked");
    // An answer that is still awaited is not this call's any more.
    m_session.at.dialPending.Take();
    const Call ended = ChangeCall([](Call& call) { return std::exchange(call, Call{}); });
    if (!ended.Any()) return;
    m_session.platform.loop.KillTimer(ringTimer);
    m_worker.Post([this, ended] { Ended(ended); });
}

void CallControl::OnModuleClosed() {
    OnCallHooked();
    if (m_dialogue.exchange(Dialogue::None) != Dialogue::None) m_session.screens.Repaint();
    const std::shared_ptr<Event> done = m_session.platform.runtime.CreateEvent(EventReset::Manual);
    if (m_worker.Post([done] { done->Set(); })) done->Wait(longestEnd);
}

void CallControl::Ended(const Call& call) {
    SessionState& state = m_session.state;
    nCallStatus = Guard::Ending;
    KovexDrvApi& driver = m_session.platform.driver;
    driver.SendGprs3gHandfreeMsgToAudio(0);
    int speaker = 0;
    if (driver.GetGprsHpSpkStatus(speaker) && speaker == 1) driver.SetGprsHpSpkStatus(0);
    driver.SetAudioTo3G(0);

    Screens& screens = m_session.screens;
    if (call.m_bRinging) m_session.platform.sound.PlaySound({});
    screens.ShowIncomingCall(false);
    screens.SetCallerText("");
    ScreenMode inCall = ScreenMode::InCall;
    state.MainScreenMode.compare_exchange_strong(inCall, ScreenMode::Idle);
    if (state.MainScreenMode != ScreenMode::Closed) screens.SetStatusText("");
    screens.Repaint();
    if (state.m_bWindowHidden) screens.PlaceWindow(WindowPlace::Hidden);
    Publish(call);
    Broadcast(m_session.platform, "UM_CALLHOOKED", 0, 0);
    driver.ReleaseDisableKeySuspend();
    driver.ReleaseDisableAutoSuspend();
    m_bUserHangUp = false;
    RestartPoll();
    nCallStatus = Guard::CALL_READY;
}

// Decides the record, and tells the other programs that no call is up.
void CallControl::Publish(const Call& ended) {
    [[maybe_unused]] const bool loaded = m_values.Load();
    const std::string answered = m_values.Get("CallStatus");
    if (ended.Outgoing()) {
        // Never established; its record was written when it was dialled.
    } else if (m_values.Get("HookDialed") == "1") {
        m_values.Set("HookDialed", "0");
    } else if (!ended.m_strCallNumber.empty()) {
        if (answered.empty()) {
            if (Append(m_lists.missed, RecordOf(ended.m_strCallNumber, ended.m_strCallName))) CountMissed();
        } else {
            Append(m_lists.received, RecordOf(answered, ended.m_strCallName));
        }
    }
    m_values.Set("CallStatus", "");
    [[maybe_unused]] const bool saved = m_values.Save();
}

}  // namespace varkel
