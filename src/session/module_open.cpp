#include "session/module_open.h"

namespace varkel {

namespace {

constexpr int port = 7;
constexpr std::uint32_t baudRate = 115200;
constexpr int networkMode = 2;

constexpr Ticks tmcSettles = 500;
constexpr Ticks usbPoll = 300;
constexpr Ticks usbLimit = 40'000;
constexpr Ticks usbSettles = 2000;
constexpr Ticks greetingPause = 100;
constexpr Ticks readyLimit = 80'000;
constexpr Ticks slice = 10;          // how soon a changed flag is seen
constexpr Ticks questionPoll = 500;  // how often a module that announces nothing is asked
constexpr Ticks searchPoll = 1000;
constexpr Ticks searchLimit = 80'000;
constexpr Ticks imsiLimit = 30'000;
constexpr Ticks lastPause = 200;

using Outcome = OpenWaits::Outcome;

}  // namespace

ModuleOpen::ModuleOpen(Session& session, const Parts& parts, OpenWaits& waits, void* owner,
                       ReceiveCallback receive)
    : m_session(session),
      m_parts(parts),
      m_waits(waits),
      m_simUnlock(session, waits),
      m_owner(owner),
      m_receive(receive) {}

bool ModuleOpen::Run() {
    Begin();
    const bool open = FindSim() && PowerOn() && OpenLink() && Meet() && Greet() && AwaitModule() &&
                      m_simUnlock.Run() && SearchNetwork() && Initialise() && ChooseAccessPoint() &&
                      DialData();
    if (open) Finish();
    return open;
}

bool ModuleOpen::Fail(const char* logLine, WarnCode code) {
    if (*logLine != '\0') m_session.platform.log.Trace("%s", logLine);
    if (!m_session.state.g_bSilentOpen) m_session.screens.Warn(code);
    return false;
}

void ModuleOpen::Begin() {
    m_session.state.m_bModuleOpen = true;
    m_session.state.m_bModulePowered = false;
    m_session.state.m_nCpinState = SimState::Unknown;
    m_session.screens.EnableWindow(false);
    m_session.screens.SetStatusText(m_session.platform.language.LoadString("IDS_INITING"));
    m_session.platform.driver.RequireDisableKeySuspend();
    m_session.platform.driver.RequireDisableAutoSuspend();
}

bool ModuleOpen::FindSim() {
    int inserted = 0;
    if (m_session.platform.driver.Get3GSimStatus(inserted) && inserted != 0) return true;
    return Fail("Network_interface_Connect()--------fail---!bSimIn--\r\n", WarnCode::NoSim);
}

bool ModuleOpen::UsbLinkPresent() {
    int present = 0;
    return m_session.platform.driver.GetUsbHostStatus(present) && present != 0;
}

bool ModuleOpen::PowerOn() {
    KovexDrvApi& driver = m_session.platform.driver;
    m_session.screens.ShowOpenStep(OpenStep::PowerOn, usbLimit);
    const Ticks start = m_session.platform.runtime.GetTickCount();
    driver.SetTmcPower(1);
    if (!m_waits.Pause(tmcSettles)) return false;
    driver.Set3GPower(1);
    const Outcome outcome = m_waits.Until([this] { return UsbLinkPresent(); }, start, usbLimit, usbPoll);
    if (outcome == Outcome::Cancelled) return false;
    if (outcome == Outcome::TimedOut) {
        m_session.screens.Warn(WarnCode::Open3gFail);
        m_session.platform.log.Trace("Network_interface_Connect()--------fail---open power failed--\r\n");
        return false;
    }
    m_session.state.m_bModulePowered = true;
    m_session.at.SetLinkUp(true);
    return m_waits.Pause(usbSettles);
}

bool ModuleOpen::OpenLink() {
    m_session.screens.ShowOpenStep(OpenStep::OpenLink, 0);
    if (Initial3GCom()) return true;
    if (!m_session.state.g_bSilentOpen) m_session.platform.notices.ShowMessageBox("open port faild", "");
    return Fail("Network_interface_Connect()--------fail---!bOpenPort--\r\n", WarnCode::NetOpenFailed);
}

bool ModuleOpen::Initial3GCom() {
    m_session.platform.log.Trace("Initial 3G Com-------");
    m_parts.link.SetReceiveCallback(m_receive);
    if (!m_parts.link.OpenPort(m_owner, port, baudRate, 0, 8, 0)) return false;
    m_session.at.Attach(m_parts.link, m_owner);
    m_session.platform.log.Trace("Initial 3G Com-------SUS!------");
    return true;
}

// Settles which kind of module it is, and that it listens, as far as it does not tell by itself. Only the
// unit's own kind knows the command that asks for its indications.
bool ModuleOpen::Meet() {
    const ModemProfile* const chosen = m_session.options.profile;
    m_session.state.profile = chosen ? chosen : &unitModule;
    if (chosen && chosen->ready == ReadySign::Indication) return true;
    FinalResult result = FinalResult::None;
    m_session.at.TakeFinalResult();
    const auto answered = [this, chosen, &result] {
        result = m_session.at.TakeFinalResult();
        if (result != FinalResult::None) return true;
        chosen ? m_session.at.cmd_at() : m_session.at.cmd_at_OriginalMsg();
        return false;
    };
    m_session.screens.ShowOpenStep(OpenStep::AwaitModule, readyLimit);
    const Ticks start = m_session.platform.runtime.GetTickCount();
    const Outcome outcome = m_waits.Until(answered, start, readyLimit, questionPoll);
    if (outcome == Outcome::TimedOut) return Fail("", WarnCode::NetOpenFailed);
    if (!chosen && result == FinalResult::Error) m_session.state.profile = &standardModule;
    m_session.platform.log.Trace("[OpenModule]--profile:%s", m_session.state.profile.load()->name);
    return outcome == Outcome::Done;
}

bool ModuleOpen::Greet() {
    const ModemProfile& profile = *m_session.state.profile;
    if (!RunSteps(profile.greeting)) return false;
    m_session.settings.WriteDword(Settings::networkModeKey, "NetworkMode", networkMode);
    profile.setNetworkMode(m_session.at, networkMode);
    m_session.at.cmd_at_ipr();
    return m_waits.Pause(greetingPause);
}

bool ModuleOpen::AwaitModule() {
    const bool indicated = m_session.state.profile.load()->ready == ReadySign::Indication;
    const auto ready = [this, indicated] { return indicated ? Indicated() : SaysTheSimsState(); };
    m_session.screens.ShowOpenStep(OpenStep::AwaitModule, readyLimit);
    const Ticks start = m_session.platform.runtime.GetTickCount();
    const Outcome outcome = m_waits.Until(ready, start, readyLimit, indicated ? slice : questionPoll);
    if (outcome == Outcome::TimedOut) return Fail("", WarnCode::NetOpenFailed);
    // Of a SIM that is not there the user has heard already.
    return outcome == Outcome::Done && Indicated();
}

bool ModuleOpen::Indicated() {
    return m_session.state.m_bModuleReady || !m_session.state.g_bSimOk;
}

// Asks until the module has something to say.
bool ModuleOpen::SaysTheSimsState() {
    SessionState& state = m_session.state;
    if (state.m_nCpinState != SimState::Unknown) state.m_bModuleReady = true;
    if (Indicated() || state.m_simPresence == SimPresence::Absent) return true;
    m_session.at.cmd_at_cpin();
    return false;
}

bool ModuleOpen::Registered() {
    const FixedText<10> csq = m_session.state.m_szCsq.Get();
    const int value = SignalValue(csq.View());
    return value > 4 && value != 99 && m_session.state.m_bModuleReady;
}

bool ModuleOpen::SearchNetwork() {
    m_session.platform.log.Trace("[BTNEV]search network!");
    m_session.screens.SetStatusText(m_session.platform.language.LoadString("IDS_SEARCHING"));
    m_session.screens.ShowOpenStep(OpenStep::SearchNetwork, searchLimit);
    const auto found = [this] {
        if (Registered()) return true;
        m_session.at.cmd_check_signal();
        return false;
    };
    const Ticks start = m_session.platform.runtime.GetTickCount();
    const Outcome outcome = m_waits.Until(found, start, searchLimit, searchPoll);
    if (outcome == Outcome::TimedOut) {
        return Fail("Network_interface_Connect()--------fail---overtime--\r\n", WarnCode::NetOpenFailed);
    }
    return outcome == Outcome::Done;
}

bool ModuleOpen::RunSteps(std::span<const InitStep> steps) {
    for (const InitStep& step : steps) {
        step.send(m_session.at);
        if (!m_waits.Pause(step.pause)) return false;
    }
    return true;
}

bool ModuleOpen::Initialise() {
    m_session.screens.ShowOpenStep(OpenStep::Initialise, 0);
    if (!RunSteps(m_session.state.profile.load()->beforeRecords)) return false;
    if (!RunSteps(InitStepsBeforePhonebook())) return false;
    if (!m_parts.phonebook.Read(m_waits)) return false;
    m_parts.sim.QueryIdentity(IdQuery::Imsi);
    m_parts.sim.QueryIdentity(IdQuery::Imei);
    return !m_waits.Cancelled();
}

// A slow module may still owe the IMSI that chooses the operator; one that has answered without it does not.
bool ModuleOpen::ChooseAccessPoint() {
    const Ticks start = m_session.platform.runtime.GetTickCount();
    const auto settled = [this] {
        return !m_session.state.m_strImsi.Get().empty() || !m_session.at.AnswerOutstanding(imsiLimit);
    };
    if (m_waits.Until(settled, start, imsiLimit, slice) == Outcome::Cancelled) return false;
    if (m_parts.data.GetApn()) return true;
    m_session.screens.Warn(WarnCode::NoApn);
    return false;
}

bool ModuleOpen::DialData() {
    if (m_session.state.m_bAutoConnect) m_parts.data.OpenNet(m_waits);
    return !m_waits.Cancelled();
}

void ModuleOpen::Finish() {
    m_session.screens.SetStatusText("");
    m_parts.signal.Start();
    m_session.state.MainScreenMode = ScreenMode::Idle;
    m_session.screens.Repaint();
    m_session.settings.WriteOpenFlag(1);
    m_session.platform.driver.ReleaseDisableKeySuspend();
    m_session.platform.driver.ReleaseDisableAutoSuspend();
    m_session.screens.EnableWindow(true);
    m_session.at.cmd_set_cscs_gsm();
    m_session.platform.runtime.Sleep(lastPause);
}

}  // namespace varkel
