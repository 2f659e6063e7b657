#include "session/program_watch.h"

#include <utility>

namespace varkel {

namespace {

constexpr Ticks lookPeriod = 500;  // how soon the end of this program ends the thread

}  // namespace

ProgramWatch::ProgramWatch(Session& session) : m_session(session) {}

ProgramWatch::~ProgramWatch() {
    if (!m_thread) return;
    m_ending = true;
    m_thread->ResumeThread();
    m_thread->Wait(infiniteTicks);
}

bool ProgramWatch::Start() {
    const ThreadOptions options{.name = "detect", .suspended = true, .priority = ThreadPriority::Lowest};
    m_thread = m_session.platform.runtime.CreateThread(options, [this] { DetectThread(); });
    return m_thread != nullptr;
}

void ProgramWatch::Launch(std::string_view path) {
    m_session.screens.PlaceWindow(WindowPlace::Hidden);
    if (auto program = m_session.platform.processes.CreateProcess(path)) {
        Watch(std::move(program));
        return;
    }
    m_session.platform.notices.ShowMessageBox("Failed to run iexplore.exe!", "");
    m_session.screens.PlaceWindow(WindowPlace::FullScreen);
}

void ProgramWatch::Watch(std::shared_ptr<Process> program) {
    m_program.Set(std::move(program));
    if (m_thread) m_thread->ResumeThread();
}

void ProgramWatch::DetectThread() {
    while (!m_ending) {
        if (const std::shared_ptr<Process> program = m_program.Get()) {
            while (!m_ending && program->Wait(lookPeriod) != WaitResult::Object0) {
            }
            if (m_ending) return;
            m_session.screens.PlaceWindow(WindowPlace::TopMost);
            m_session.state.g_bSilentOpen = false;
            m_session.state.m_externalClient = false;
            m_program.Set(nullptr);
        }
        m_session.platform.runtime.SuspendThread();
    }
}

}  // namespace varkel
