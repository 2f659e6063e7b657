#include "session/module_control.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "session/main_window.h"

namespace varkel {

namespace {

constexpr int recoveryAttempts = 3;
constexpr Ticks recoveryPause = 10'000;

}  // namespace

ModuleControl::ModuleControl(Session& session, const ModuleOpen::Parts& parts, void* owner,
                             ReceiveCallback receive, std::function<void()> afterFailedOpen)
    : m_session(session),
      m_parts(parts),
      m_waits(session.platform.runtime),
      m_open(session, parts, m_waits, owner, receive),
      m_afterFailedOpen(std::move(afterFailedOpen)),
      m_openEndMessage(session.platform.windows.RegisterWindowMessage("3G_OPEN_END")) {}

ModuleControl::~ModuleControl() {
    if (!m_thread) return;
    if (!m_endRequested) RequestEnd([] {});
    m_thread->Wait(infiniteTicks);
}

bool ModuleControl::Start() {
    m_thread = m_session.platform.runtime.CreateThread({.name = "module open", .suspended = true},
                                                       [this] { OpenThread(); });
    return m_thread != nullptr;
}

void ModuleControl::Request(Job job) {
    m_jobs.With([job](std::deque<Job>& jobs) {
        // What waits to be opened is not, when it is to be closed after all.
        if (job == Job::Close || job == Job::End) std::erase(jobs, Job::Open);
        // The same request twice is one request, so that the queue cannot grow.
        if (std::find(jobs.begin(), jobs.end(), job) == jobs.end()) jobs.push_back(job);
    });
    if (m_thread) m_thread->ResumeThread();
}

void ModuleControl::RequestClose() {
    Request(Job::Close);
    CancelOpen();
}

void ModuleControl::CancelOpen() {
    m_waits.Cancel();
    m_session.screens.CancelPrompts();
}

void ModuleControl::RequestEnd(std::function<void()> ended) {
    if (m_endRequested.exchange(true)) return;
    m_ended = std::move(ended);
    if (!m_thread) m_ended();
    Request(Job::End);
    CancelOpen();
}

void ModuleControl::OnLinkLost() {
    m_session.platform.log.Trace("[ModuleControl]--the USB link is lost");
    m_linkLost = true;
    // While a recovery runs it is that attempt which fails; the recovery goes on by its own count.
    if (!m_recovering) Request(Job::Recover);
    if (m_opening) CancelOpen();
}

void ModuleControl::OpenThread() {
    for (;;) {
        const auto job = m_jobs.With([](std::deque<Job>& jobs) -> std::optional<Job> {
            if (jobs.empty()) return std::nullopt;
            const Job first = jobs.front();
            jobs.pop_front();
            return first;
        });
        if (!job) {
            m_session.platform.runtime.SuspendThread();
        } else if (!Perform(*job)) {
            return;
        }
    }
}

// False when the thread is to end.
bool ModuleControl::Perform(Job job) {
    switch (job) {
        case Job::Open:
            m_session.state.m_bAutoConnect = m_openWithData.load();
            Network_interface_Connect(true);
            return true;
        case Job::Close: Network_interface_Disconnect(); return true;
        case Job::Recover: Recover(); return true;
        case Job::End:
            Network_interface_Disconnect();
            m_ended();
            return false;
    }
    return true;
}

void ModuleControl::Recover() {
    if (!m_linkLost.exchange(false)) return;
    m_recovering = true;
    ArmWaits();
    Network_interface_Disconnect();
    m_session.screens.Warn(WarnCode::NetClosed);
    const bool silent = m_session.state.g_bSilentOpen;
    for (int attempt = 1; attempt <= recoveryAttempts; ++attempt) {
        const bool last = attempt == recoveryAttempts;
        m_session.state.g_bSilentOpen = silent || !last;
        if (!m_waits.Pause(recoveryPause)) break;
        m_linkLost = false;
        if (Network_interface_Connect(last)) break;
    }
    m_session.state.g_bSilentOpen = silent;
    m_recovering = false;
    // A link that was lost behind the last step of the attempt is lost once more.
    if (m_linkLost && m_session.state.m_bModuleOpen) {
        Request(Job::Recover);
    } else {
        m_linkLost = false;
    }
}

// From here on a cancel ends the waits; one that belongs to a request which is still queued does so at once.
void ModuleControl::ArmWaits() {
    m_waits.Reset();
    if (StopRequested()) m_waits.Cancel();
}

bool ModuleControl::StopRequested() {
    return m_jobs.With([](const std::deque<Job>& jobs) {
        return std::any_of(jobs.begin(), jobs.end(),
                           [](Job job) { return job == Job::Close || job == Job::End; });
    });
}

bool ModuleControl::Network_interface_Connect(bool lastAttempt) {
    if (m_session.state.m_bModuleOpen) return true;
    ArmWaits();
    m_opening = true;
    const bool open = m_open.Run();
    m_opening = false;
    PostToMainWindow(m_session.platform, m_openEndMessage, 0, 0);
    if (open) {
        m_parts.messages.OnModuleOpened();
        return true;
    }
    ReleaseSuspend();
    m_session.screens.SetStatusText("");
    m_session.screens.EnableWindow(true);
    Network_interface_Disconnect();
    const bool recoveryFollows = m_linkLost && !m_recovering;
    if (lastAttempt && !recoveryFollows) m_afterFailedOpen();
    return false;
}

void ModuleControl::ReleaseSuspend() {
    m_session.platform.driver.ReleaseDisableKeySuspend();
    m_session.platform.driver.ReleaseDisableAutoSuspend();
}

void ModuleControl::Network_interface_Disconnect() {
    m_session.platform.log.Trace("[BTNEV]Network_interface_Disconnect");
    SessionState& state = m_session.state;
    if (!state.m_bModuleOpen.exchange(false)) return;
    state.m_simPresence = SimPresence::Unknown;
    state.m_everReceived = false;
    m_parts.signal.Stop();
    m_parts.signal.Clear();
    state.m_bModuleReady = false;
    state.g_bSimOk = true;
    m_parts.data.ShutDown();
    m_session.at.SetLinkUp(false);
    m_parts.messages.OnModuleClosed();
    m_parts.link.ClosePort();
    m_parts.phonebook.OnModuleClosed();
    m_parts.calls.OnModuleClosed();
    m_session.platform.driver.SetTmcPower(0);
    m_session.platform.driver.Set3GPower(0);
    state.MainScreenMode = ScreenMode::Closed;
    m_session.screens.Repaint();
    m_session.settings.WriteOpenFlag(0);
}

}  // namespace varkel
