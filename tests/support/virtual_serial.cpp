#include "tests/support/virtual_serial.h"

#include <algorithm>
#include <utility>

namespace varkel::test {

bool VirtualSerial::Valid(CommHandle device, const char* call) {
    std::lock_guard lock(m_mutex);
    return device != CommHandle::Invalid && device == m_open && m_failing != call;
}

void VirtualSerial::SetFailing(std::string_view call) {
    std::lock_guard lock(m_mutex);
    m_failing = call;
}

void VirtualSerial::SetAbsent(bool absent) {
    std::lock_guard lock(m_mutex);
    m_absent = absent;
    if (absent && m_open != CommHandle::Invalid) m_dead = true;
}

CommHandle VirtualSerial::CreateFile(std::string_view deviceName) {
    std::lock_guard lock(m_mutex);
    if (deviceName != "COM7:" || m_absent || m_open != CommHandle::Invalid) return CommHandle::Invalid;
    m_open = CommHandle{++m_lastHandle};
    m_queue.Clear();
    m_waiting.clear();
    m_waitEnded = false;
    m_dead = false;
    ++opened;
    return m_open;
}

int VirtualSerial::CloseHandle(CommHandle device) {
    {
        std::lock_guard lock(m_mutex);
        if (device != m_open) return 9;
        m_open = CommHandle::Invalid;
    }
    m_changed->Set();
    return 0;
}

bool VirtualSerial::PurgeComm(CommHandle device, std::uint32_t flags) {
    std::lock_guard lock(m_mutex);
    if ((flags & PURGE_RXCLEAR) != 0) {
        m_queue.Clear();
        m_waiting.clear();
    }
    return device == m_open;
}

bool VirtualSerial::SetCommMask(CommHandle device, std::uint32_t mask) {
    if (!Valid(device, "SetCommMask")) return false;
    if (mask == 0) m_waitEnded = true;
    if (mask == 0) m_changed->Set();
    return true;
}

bool VirtualSerial::WaitCommEvent(CommHandle device, std::uint32_t& event) {
    for (;;) {
        if (!Valid(device, "WaitCommEvent")) return false;
        const Ticks now = m_runtime.GetTickCount();
        Ticks wait = infiniteTicks;
        {
            std::lock_guard lock(m_mutex);
            event = 0;
            if (m_waitEnded.exchange(false)) return true;
            event = EV_RXCHAR;
            if (m_emptyEvent.exchange(false)) return true;
            m_waiting.erase(0, m_queue.Add(m_waiting, now));
            if (m_queue.Due(now)) return true;
            wait = m_queue.DueIn(now);
        }
        m_changed->Wait(wait);
    }
}

bool VirtualSerial::ClearCommError(CommHandle device, std::uint32_t& errors, std::size_t& inputQueued) {
    if (!Valid(device, "ClearCommError")) return false;
    std::lock_guard lock(m_mutex);
    errors = 0;
    inputQueued = m_queue.ChunkSize();
    return true;
}

bool VirtualSerial::ReadFile(CommHandle device, std::span<char> bytes, std::size_t& read) {
    read = 0;
    if (!Valid(device, "ReadFile")) return false;
    const Ticks now = m_runtime.GetTickCount();
    std::lock_guard lock(m_mutex);
    read = m_queue.Take(bytes, now);
    m_waiting.erase(0, m_queue.Add(m_waiting, now));
    return true;
}

bool VirtualSerial::WriteFile(CommHandle device, std::string_view bytes, std::size_t& written) {
    written = 0;
    if (!Valid(device, "WriteFile")) return false;
    if (m_dead) return false;
    if (stuck) {
        m_runtime.Sleep(1000);
        return true;
    }
    written = largestWrite == 0 ? bytes.size() : std::min(bytes.size(), largestWrite.load());
    m_written.With([&](std::string& all) { all.append(bytes.substr(0, written)); });
    if (onWrite) onWrite(bytes.substr(0, written));
    return true;
}

void VirtualSerial::Feed(std::string_view bytes) {
    const Ticks now = m_runtime.GetTickCount();
    {
        std::lock_guard lock(m_mutex);
        if (m_open == CommHandle::Invalid || m_dead) return;
        m_waiting.append(bytes);
        m_waiting.erase(0, m_queue.Add(m_waiting, now));
    }
    m_changed->Set();
}

void VirtualSerial::FeedNothing() {
    m_emptyEvent = true;
    m_changed->Set();
}

bool VirtualSerial::Open() {
    std::lock_guard lock(m_mutex);
    return m_open != CommHandle::Invalid;
}

}  // namespace varkel::test
