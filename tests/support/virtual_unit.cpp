#include "tests/support/virtual_unit.h"

#include <algorithm>
#include <utility>

#include "tests/support/memory_windows.h"

namespace varkel::test {

VirtualUnit::VirtualUnit(VirtualRuntime& runtime, VirtualSerial& serial, const sim::UnitConfig& config,
                         std::uint64_t seed)
    : m_runtime(runtime),
      m_serial(serial),
      m_wake(runtime.CreateEvent(EventReset::Automatic)),
      m_unit(config, seed) {
    sim::UnitHooks hooks;
    // It runs inside calls into the unit, under the lock.
    hooks.command = [this](std::string_view line) { m_trace.emplace_back(line); };
    m_unit.SetHooks(std::move(hooks));
    m_unit.Head().mainWindow = static_cast<int>(mainWindow);
    m_serial.SetAbsent(true);
    m_serial.onWrite = [this](std::string_view bytes) { HostWrites(bytes); };
    m_thread = runtime.CreateThread({.name = "modem"}, [this] { Act(); });
}

VirtualUnit::~VirtualUnit() {
    {
        std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake->Set();
    m_thread->Wait(infiniteTicks);
    m_serial.onWrite = nullptr;
}

void VirtualUnit::Act() {
    for (;;) {
        std::vector<std::string> pieces;
        Ticks wait = infiniteTicks;
        {
            std::lock_guard lock(m_mutex);
            if (m_ending) return;
            const sim::Millis now = m_runtime.Elapsed();
            m_unit.Advance(now);
            for (std::string piece = m_unit.TakeOutput(now); !piece.empty(); piece = m_unit.TakeOutput(now)) {
                pieces.push_back(std::move(piece));
            }
            m_serial.SetAbsent(!m_unit.LinePresent());
            if (const auto deadline = m_unit.NextDeadline()) {
                wait = static_cast<Ticks>(std::max(*deadline, now + 1) - now);
            }
        }
        for (const std::string& piece : pieces)
            m_serial.Feed(piece);
        if (pieces.empty()) m_wake->Wait(wait);
    }
}

void VirtualUnit::HostWrites(std::string_view bytes) {
    {
        std::lock_guard lock(m_mutex);
        m_unit.HostWrites(bytes, m_runtime.Elapsed());
    }
    m_wake->Set();
}

bool VirtualUnit::Call(DrvFunction function, int& value) {
    bool done = false;
    {
        std::lock_guard lock(m_mutex);
        const DrvEntry& entry = drvTable[static_cast<std::size_t>(function)];
        if (entry.kind != DrvKind::Get)
            m_trace.push_back(std::string(entry.name) + " " + std::to_string(value));
        done = m_unit.Call(function, value, m_runtime.Elapsed());
        m_serial.SetAbsent(!m_unit.LinePresent());
    }
    m_wake->Set();
    return done;
}

std::string VirtualUnit::Command(std::string_view line) {
    std::string text;
    {
        std::lock_guard lock(m_mutex);
        text = m_unit.Command(line, m_runtime.Elapsed()).text;
        m_serial.SetAbsent(!m_unit.LinePresent());
    }
    m_wake->Set();
    return text;
}

std::vector<std::string> VirtualUnit::TakeTrace() {
    std::lock_guard lock(m_mutex);
    return std::exchange(m_trace, {});
}

int VirtualUnit::Count(std::string_view line) {
    std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count(m_trace.begin(), m_trace.end(), line));
}

int VirtualUnit::SuspendLocks() {
    std::lock_guard lock(m_mutex);
    return m_unit.Head().keySuspendLocks + m_unit.Head().autoSuspendLocks;
}

bool VirtualUnit::AudioAtRest() {
    std::lock_guard lock(m_mutex);
    const sim::HeadUnit& head = m_unit.Head();
    return head.audioTo3G == 0 && head.handsFree == 0 && head.speaker == 0;
}

}  // namespace varkel::test
