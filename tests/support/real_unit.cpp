#include "tests/support/real_unit.h"

#include <poll.h>
#include <utility>

#include "tests/support/memory_windows.h"

namespace varkel::test {

RealUnit::RealUnit(LinuxRuntime& runtime, unsigned speed, std::string link, const sim::UnitConfig& config)
    : m_runtime(runtime),
      m_speed(speed),
      m_link(std::move(link)),
      m_lastTicks(runtime.GetTickCount()),
      m_unit(config, 1) {
    m_unit.Head().mainWindow = static_cast<int>(mainWindow);
    m_thread = std::thread([this] { Serve(); });
}

RealUnit::~RealUnit() {
    {
        std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.Signal();
    m_thread.join();
}

sim::Millis RealUnit::Now() {
    const Ticks ticks = m_runtime.GetTickCount();
    m_now += TicksSince(ticks, m_lastTicks);
    m_lastTicks = ticks;
    return m_now;
}

int RealUnit::Act() {
    const sim::Millis now = Now();
    m_unit.Advance(now);
    if (!m_unit.LinePresent()) m_pty.reset();
    if (m_unit.LinePresent() && !m_pty) m_pty = sim::Pty::Open(m_link);
    if (m_pty) {
        const std::string written = m_pty->Read();
        if (!written.empty()) m_unit.HostWrites(written, now);
    }
    for (std::string piece = m_unit.TakeOutput(now); !piece.empty(); piece = m_unit.TakeOutput(now)) {
        if (m_pty) m_pty->Write(piece);
    }
    const auto deadline = m_unit.NextDeadline();
    if (!deadline) return -1;
    return *deadline <= now ? 0 : static_cast<int>((*deadline - now) / m_speed + 1);
}

void RealUnit::Serve() {
    for (;;) {
        pollfd watched[2] = {{m_wake.Get(), POLLIN, 0}, {-1, POLLIN, 0}};
        int wait = 0;
        {
            std::lock_guard lock(m_mutex);
            if (m_ending) return;
            wait = Act();
            if (m_pty) watched[1].fd = m_pty->Descriptor();
        }
        poll(watched, 2, wait);
        if (watched[0].revents != 0) m_wake.Clear();
    }
}

bool RealUnit::Call(DrvFunction function, int& value) {
    bool done = false;
    {
        std::lock_guard lock(m_mutex);
        done = m_unit.Call(function, value, Now());
        Act();
    }
    m_wake.Signal();
    return done;
}

std::string RealUnit::Command(std::string_view line) {
    std::string text;
    {
        std::lock_guard lock(m_mutex);
        text = m_unit.Command(line, Now()).text;
        Act();
    }
    m_wake.Signal();
    return text;
}

int RealUnit::SuspendLocks() {
    std::lock_guard lock(m_mutex);
    return m_unit.Head().keySuspendLocks + m_unit.Head().autoSuspendLocks;
}

}  // namespace varkel::test
