#include "session/varkel_dlg.h"

#include <utility>

#include "session/main_window.h"

namespace varkel {

namespace {

constexpr std::string_view logBase = "Nandflash\\3G";
constexpr std::size_t logLimit = 4 * 1024 * 1024;
constexpr Ticks statusLineDelay = 100;
constexpr Ticks backgroundOpenDelay = 500;

constexpr TimerId statusLineTimer = static_cast<TimerId>(SessionTimer::StatusLine);
constexpr TimerId openTimer = static_cast<TimerId>(SessionTimer::BackgroundOpen);

// A named event that other programs can wait for, or, where the system has none, one that only this program
// sees.
std::shared_ptr<Event> CreateNamedEvent(Platform& platform, const char* name) {
    auto event = platform.objects.CreateEvent(name);
    return event ? event : platform.runtime.CreateEvent(EventReset::Manual);
}

}  // namespace

CVarkelDlg::CVarkelDlg(Platform& platform, Screens& screens, SessionOptions options)
    : m_platform(platform),
      m_screens(screens),
      m_settings(platform.registry),
      m_link(platform.runtime, platform.serial, platform.notices, platform.log),
      m_at(platform.runtime, platform.driver, platform.windows, platform.log),
      m_session{platform, m_state, m_settings, m_at, screens, std::move(options)},
      m_turn(platform.runtime, m_at),
      m_sharedData(platform.objects, platform.log),
      m_phones(m_session, m_turn),
      m_sim(m_session),
      m_listeners(platform.windows),
      m_data(m_session, m_turn, m_listeners),
      m_signal(m_session, m_turn, m_data),
      m_callLists(platform.files, platform.log),
      m_calls(m_session, m_turn, m_signal, m_phones, m_callLists),
      m_messages(m_session, m_turn, m_calls, m_signal),
      m_choices(m_session, m_turn, m_data, m_messages),
      m_oneShots(m_session, m_calls, m_messages, m_signal),
      m_programs(m_session),
      m_speech(m_session),
      m_unitMessages(m_session, *this),
      m_requests(m_session, m_turn, m_sharedData, m_sim, m_data, m_listeners, m_messages),
      m_module(m_session, {m_link, m_sim, m_signal, m_phones.Sim(), m_calls, m_data, m_messages}, this,
               &CVarkelDlg::OnSeriesRead, [this] {
                   if (m_background) m_platform.loop.Post([this] { HideOrQuit(); });
               }) {
    m_turn.SetWatch([this] { m_oneShots.Watch(); });
    m_link.SetLostCallback([](void* owner) { Self(owner).m_module.OnLinkLost(); });
}

CVarkelDlg::~CVarkelDlg() {
    for (const SessionTimer timer :
         {SessionTimer::StatusLine, SessionTimer::Signal, SessionTimer::BackgroundOpen,
          SessionTimer::SignalRepeat, SessionTimer::OneShots}) {
        m_platform.loop.KillTimer(static_cast<TimerId>(timer));
    }
    m_speech.ShutDown();
    if (m_window != WindowHandle::None) m_platform.windows.DestroyWindow(m_window);
}

void CVarkelDlg::OnInitDialog(std::string_view commandLine, LogLevel logLevel) {
    m_background = commandLine == "1";
    m_platform.log.Open(logBase, logLimit, logLevel);
    m_platform.files.CreateDirectory("NandFlash\\System");
    m_platform.files.CreateDirectory("NandFlash\\System\\Phone");
    m_window = m_platform.windows.CreateWindow(
        "3Gwindow", {.onMessage = [this](const WindowMessage& message) { OnWindowMessage(message); },
                     .onCopyData =
                         [this](std::uint32_t dwData, std::span<const std::byte> data) {
                             return m_requests.OnCopyData(dwData, data);
                         }});
    m_messages.Start();
    m_colors = m_settings.LoadColors();
    m_state.m_nDialogType = static_cast<int>(m_settings.ReadDwordOrOne(Settings::dialogTypeKey, "Gprs"));

    m_sharedData.Clear();
    m_sharedData.SetWindowHandle(static_cast<std::uint32_t>(m_window));
    m_speech.Start(m_window);
    m_screens.SetSignalLevel(0);
    CheckPower();
    if (!m_programs.Start()) m_platform.notices.ShowMessageBox("创建线程失败", "");
    m_calls.Start();
    m_data.Start();
    CreateNamedEvents();
    ModemHandlers handlers = Handlers();
    handlers.sendResult = m_sendSmSus;
    m_phones.Sim().SetContentEvent(m_recPhoneBookSus);
    m_messages.SetClientEvents(m_recvSmEvent, m_sendSmSus);
    m_at.SetHandlers(handlers);
    if (!m_module.Start()) m_platform.notices.ShowMessageBox("创建线程失败", "");
    ScheduleStart();
}

void CVarkelDlg::CheckPower() {
    int powered = 0;
    m_platform.driver.Get3GPower(powered);
    if (powered != 0) {
        m_platform.notices.MessageBox("Open 3G failed,you should restart machine!", "", nullptr);
        m_platform.driver.RestartMachine();
        return;
    }
    m_state.MainScreenMode = ScreenMode::Closed;
    m_settings.WriteOpenFlag(0);
    m_sharedData.Clear();
}

void CVarkelDlg::CreateNamedEvents() {
    const auto create = [this](const char* name) { return CreateNamedEvent(m_platform, name); };
    m_recvSmEvent = create("RecvSM_Event");
    m_recvSmEvent->Reset();
    m_sendSmEvent = create("SendSM_Event");
    m_sendSmEvent->Reset();
    m_sendSmSus = create("SendSM_SUS");
    m_sendSmSus->Reset();
    m_recPhoneBookSus = create("RecPhoneBook_SUS");
    m_sendSmSus->Reset();  // not the one just created: kept as the other programs know it
    m_simSus = create("SIM_SUS");
    m_simSus->Reset();
}

void CVarkelDlg::ScheduleStart() {
    MessageLoop& loop = m_platform.loop;
    if (m_state.m_nDialogType == 1) {
        m_screens.ShowStatusLine(false);
        loop.SetTimer(statusLineTimer, statusLineDelay, [this] {
            m_platform.loop.KillTimer(statusLineTimer);
            m_screens.ShowStatusLine(true);
        });
    }
    if (m_background || m_settings.ReadAutoOpenFlag() == 1) {
        loop.SetTimer(openTimer, backgroundOpenDelay, [this] {
            m_platform.loop.KillTimer(openTimer);
            m_screens.EnableWindow(false);
            m_module.RequestOpen();
            m_screens.EnableWindow(true);
        });
    }
    m_screens.PlaceWindow(m_background ? WindowPlace::ZeroSize : WindowPlace::FullScreen);
}

void CVarkelDlg::OpenModule(bool withData) {
    m_state.m_bOpenPending = false;
    m_module.RequestOpen(withData);
}

void CVarkelDlg::CloseModule() {
    m_state.m_bOpenPending = false;
    m_module.RequestClose();
}

void CVarkelDlg::CarryOut(const ChangeRequests& requests) {
    if (requests.turnOff) {
        // It hangs up, too.
        CloseModule();
        return;
    }
    if (requests.turnOn) {
        OpenModule(requests.openData);
        return;
    }
    if (requests.closeData) m_data.RasHangUp();
    if (requests.openData) m_data.OpenNet();
}

void CVarkelDlg::Quit() {
    m_module.RequestEnd([this] { m_platform.loop.Quit(); });
}

void CVarkelDlg::HideOrQuit() {
    const bool moduleOpen = m_settings.ReadOpenFlag() != 0;
    const char* const name = moduleOpen ? "3Gwindow_HIDE" : "3Gwindow_QUIT";
    PostToMainWindow(m_platform, m_platform.windows.RegisterWindowMessage(name), 0, 0);
    if (moduleOpen) {
        m_state.m_bWindowHidden = true;
        m_screens.PlaceWindow(WindowPlace::Hidden);
        m_signal.Stop();
    } else {
        Quit();
    }
}

void CVarkelDlg::ShowWindow() {
    m_state.m_bWindowHidden = false;
    m_screens.PlaceWindow(WindowPlace::FullScreen);
    m_speech.ReadSwitch();
    // During a call nothing is polled.
    if (ModuleReady(m_session) && !m_state.m_bCallActive) m_signal.Start();
    if (m_state.m_bOpenPending) OpenModule();
}

void CVarkelDlg::OnWindowMessage(const WindowMessage& message) {
    if (!m_requests.OnMessage(message)) m_unitMessages.OnMessage(message);
}

void CVarkelDlg::OnSeriesRead(void* owner, std::string_view chunk) {
    CVarkelDlg& self = Self(owner);
    if (chunk.empty()) {
        self.m_platform.notices.ShowMessageBox("buf < 0", "error");
        return;
    }
    self.m_state.m_lastReceive = self.m_platform.runtime.GetTickCount();
    self.m_state.m_everReceived = true;
    self.m_platform.log.Trace("[CVarkelDlg::OnSeriesRead]dwcomReturn:%zu", chunk.size());
    self.m_phones.Sim().OnChunk(chunk);
    self.m_at.ProcessRcv(chunk);
}

void CVarkelDlg::OnAtResult(AtResult result) {
    switch (result) {
        case AtResult::Finished: m_simSus->Set(); break;
        case AtResult::NoDialtone: m_screens.Warn(WarnCode::NoSignal); break;
        case AtResult::SimNotReady: m_screens.Warn(WarnCode::NoSim); break;
        case AtResult::Connect: m_platform.log.Trace("[BTNEV]CONNECT"); break;
        case AtResult::ServiceCodeFailed: m_calls.OnServiceCodeFailed(); break;
    }
}

ModemHandlers CVarkelDlg::Handlers() {
    ModemHandlers to;
    to.OnSignalStatus = [](void* o, std::string_view text) { Self(o).m_signal.OnSignalStatus(text); };
    to.OnAtResult = [](void* o, AtResult result) { Self(o).OnAtResult(result); };
    to.OnCpin = [](void* o, std::string_view text) { Self(o).m_sim.OnCpin(text); };
    to.OnUrcInd = [](void* o, std::string_view text) { Self(o).m_sim.OnUrcInd(text); };
    to.OnSimInserted = [](void* o, std::string_view text) { Self(o).m_sim.OnSimInserted(text); };
    to.OnNoSim = [](void* o) { Self(o).m_sim.OnNoSim(); };
    to.OnCimi = [](void* o, std::string_view text) { Self(o).m_sim.OnCimi(text); };
    to.OnGsn = [](void* o, std::string_view text) { Self(o).m_sim.OnGsn(text); };
    to.OnModelInitComplete = [](void* o, std::string_view) { Self(o).m_state.m_bModelInitComplete = true; };
    to.OnClosePipe = [](void* o) { Self(o).m_module.OnLinkLost(); };
    to.ServesClient = [](void* o) { return Self(o).m_messages.ServesClient(); };

    to.OnRing = [](void* o, std::string_view text) { Self(o).m_calls.OnRing(text); };
    to.OnRingNo = [](void* o, std::string_view text) { Self(o).m_calls.OnRingNo(text); };
    to.OnCallEstablished = [](void* o) { Self(o).m_calls.OnCallEstablished(); };
    to.OnCallHooked = [](void* o) { Self(o).m_calls.OnCallHooked(); };
    to.OnUssd = [](void* o, std::string_view text, int) { Self(o).m_calls.OnUssd(text); };

    to.OnMsComeIn = [](void* o, std::string_view text) { Self(o).m_messages.OnMsComeIn(text); };
    to.OnCpms = [](void* o, std::string_view text) { Self(o).m_messages.OnCpms(text); };
    to.OnMsContent = [](void* o, std::string_view text) { Self(o).m_messages.OnMsContent(text); };
    to.OnMsCenterNo = [](void* o, std::string_view text) { Self(o).m_messages.OnMsCenterNo(text); };
    to.OnSendState = [](void* o, SendState state) { Self(o).m_messages.OnSendState(state); };
    to.OnSendTip = [](void* o) { Self(o).m_messages.OnSendTip(); };
    to.OnSendMsSuc = [](void* o) { Self(o).m_messages.OnSendMsSuc(); };

    to.OnPhoneBookNum = [](void* o, std::string_view text) { Self(o).m_phones.Sim().OnPhoneBookNum(text); };
    to.OnPhoneBookTest = [](void* o, std::string_view text) { Self(o).m_phones.Sim().OnPhoneBookTest(text); };
    to.OnPhoneBookContent = [](void* o, std::string_view text) {
        Self(o).m_phones.Sim().OnPhoneBookContent(text);
    };
    to.OnPhoneBookResult = [](void* o, bool ok) { Self(o).m_phones.Editor().OnResult(ok); };

    // Known, and of no consequence beyond the log.
    to.OnCallReady = [](void*, std::string_view) {};
    to.OnCreg = [](void* o, std::string_view) { Self(o).m_platform.log.Trace("[BTNEV]OnCreg"); };
    to.OnDisc = [](void* o, std::string_view) { Self(o).m_platform.log.Trace("[BTNEV]OnDisc"); };
    return to;
}

}  // namespace varkel
