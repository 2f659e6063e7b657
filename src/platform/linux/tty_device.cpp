#include "platform/linux/tty_device.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/tty_settings.h"

namespace varkel {

namespace {

constexpr std::uint32_t CE_RXOVER = 0x0001;
constexpr std::uint32_t CE_OVERRUN = 0x0002;
constexpr std::uint32_t CE_RXPARITY = 0x0004;
constexpr std::uint32_t CE_FRAME = 0x0008;
constexpr std::uint32_t CE_BREAK = 0x0010;

}  // namespace

std::shared_ptr<TtyDevice> TtyDevice::Open(LinuxRuntime& runtime, const std::string& path,
                                           std::function<void()> onVanished) {
    FileDescriptor tty(
        Uninterrupted([&] { return open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); }));
    if (!tty || isatty(tty.Get()) == 0) return nullptr;
    // TIOCEXCL alone does not keep the superuser out.
    if (flock(tty.Get(), LOCK_EX | LOCK_NB) != 0 || ioctl(tty.Get(), TIOCEXCL) != 0) return nullptr;
    std::shared_ptr<TtyDevice> device(new TtyDevice(runtime, std::move(tty), std::move(onVanished)));
    return device->SetUp() ? device : nullptr;
}

TtyDevice::TtyDevice(LinuxRuntime& runtime, FileDescriptor tty, std::function<void()> onVanished)
    : m_runtime(runtime), m_tty(std::move(tty)), m_onVanished(std::move(onVanished)) {}

TtyDevice::~TtyDevice() {
    // Unsent bytes would hold close() up for as long as the line does not take them.
    tcflush(m_tty.Get(), TCIOFLUSH);
    ioctl(m_tty.Get(), TIOCNXCL);
}

bool TtyDevice::SetUp() {
    termios settings{};
    if (tcgetattr(m_tty.Get(), &settings) != 0) return false;
    MakeRaw(settings);
    m_state = DcbFromTermios(settings);
    m_reportedErrors = CountErrors();
    return tcsetattr(m_tty.Get(), TCSANOW, &settings) == 0;
}

void TtyDevice::Close() {
    {
        std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    m_readerWake.Signal();
    m_writerWake.Signal();
}

bool TtyDevice::Usable() {
    std::lock_guard lock(m_mutex);
    return !m_closed && !m_vanished;
}

bool TtyDevice::GetCommState(Dcb& state) {
    std::lock_guard lock(m_mutex);
    if (m_closed || m_vanished) return false;
    state = m_state;
    return true;
}

bool TtyDevice::SetCommState(const Dcb& state) {
    std::lock_guard lock(m_mutex);
    termios asked{};
    if (m_closed || m_vanished || tcgetattr(m_tty.Get(), &asked) != 0 || !ApplyDcb(state, asked))
        return false;
    termios taken{};
    if (tcsetattr(m_tty.Get(), TCSANOW, &asked) != 0 || tcgetattr(m_tty.Get(), &taken) != 0 ||
        !SameLine(asked, taken))
        return false;
    SetModemLine(TIOCM_DTR, state.fDtrControl);
    SetModemLine(TIOCM_RTS, state.fRtsControl);
    m_state = state;
    return true;
}

// A pseudo-terminal and some USB modems have no such lines; they work without.
void TtyDevice::SetModemLine(int line, bool on) {
    ioctl(m_tty.Get(), on ? TIOCMBIS : TIOCMBIC, &line);
}

bool TtyDevice::GetCommTimeouts(CommTimeouts& timeouts) {
    std::lock_guard lock(m_mutex);
    timeouts = m_timeouts;
    return !m_closed;
}

bool TtyDevice::SetCommTimeouts(const CommTimeouts& timeouts) {
    std::lock_guard lock(m_mutex);
    m_timeouts = timeouts;
    return !m_closed;
}

bool TtyDevice::PurgeComm(std::uint32_t flags) {
    std::lock_guard lock(m_mutex);
    if (m_closed) return false;
    bool purged = true;
    if (flags & PURGE_TXCLEAR) purged &= tcflush(m_tty.Get(), TCOFLUSH) == 0;
    if (flags & PURGE_RXCLEAR) {
        m_queue.Clear();
        purged &= tcflush(m_tty.Get(), TCIFLUSH) == 0;
    }
    return purged;
}

bool TtyDevice::SetCommMask(std::uint32_t mask) {
    std::lock_guard lock(m_mutex);
    if (m_closed) return false;
    m_mask = mask;
    if (mask == 0) m_endWait = true;
    m_readerWake.Signal();
    return true;
}

bool TtyDevice::WaitCommEvent(std::uint32_t& event) {
    event = 0;
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (m_closed) return false;
        if (std::exchange(m_endWait, false)) return true;
        const bool listening = (m_mask & EV_RXCHAR) != 0 && !m_vanished;
        const Ticks dueIn = listening ? m_queue.DueIn(m_runtime.GetTickCount()) : infiniteTicks;
        if (dueIn == 0) {
            event = EV_RXCHAR;
            return true;
        }
        lock.unlock();
        pollfd sources[] = {{m_readerWake.Get(), POLLIN, 0}, {listening ? m_tty.Get() : -1, POLLIN, 0}};
        Poll(sources, m_runtime.RealTime(dueIn));
        // Cleared before the state is looked at, so that a call that comes now is not missed.
        if (sources[0].revents != 0) m_readerWake.Clear();
        lock.lock();
        if (sources[1].revents != 0 && !Fill()) {
            lock.unlock();
            NoticeVanished();
            lock.lock();
        }
    }
}

bool TtyDevice::Fill() {
    char bytes[ReceiveQueue::capacity];
    const std::size_t room = m_queue.Room();
    if (room == 0) return true;
    const ssize_t count = Uninterrupted([&] { return read(m_tty.Get(), bytes, room); });
    if (count < 0 && errno == EAGAIN) return true;
    if (count <= 0) return false;
    m_queue.Add({bytes, static_cast<std::size_t>(count)}, m_runtime.GetTickCount());
    return true;
}

void TtyDevice::NoticeVanished() {
    {
        std::lock_guard lock(m_mutex);
        if (m_vanished || m_closed) return;
        m_vanished = true;
        m_queue.Clear();
    }
    m_readerWake.Signal();
    if (m_onVanished) m_onVanished();
}

bool TtyDevice::ClearCommError(std::uint32_t& errors, std::size_t& inputQueued) {
    std::lock_guard lock(m_mutex);
    errors = 0;
    inputQueued = m_queue.ChunkSize();
    if (m_closed) return false;
    const ErrorCounts now = CountErrors();
    if (now.bufferOverrun != m_reportedErrors.bufferOverrun) errors |= CE_RXOVER;
    if (now.overrun != m_reportedErrors.overrun) errors |= CE_OVERRUN;
    if (now.parity != m_reportedErrors.parity) errors |= CE_RXPARITY;
    if (now.frame != m_reportedErrors.frame) errors |= CE_FRAME;
    if (now.breaks != m_reportedErrors.breaks) errors |= CE_BREAK;
    m_reportedErrors = now;
    return true;
}

TtyDevice::ErrorCounts TtyDevice::CountErrors() const {
    serial_icounter_struct counts{};
    if (ioctl(m_tty.Get(), TIOCGICOUNT, &counts) != 0) return {};
    return {counts.overrun, counts.parity, counts.frame, counts.brk, counts.buf_overrun};
}

bool TtyDevice::ReadFile(std::span<char> bytes, std::size_t& read) {
    std::lock_guard lock(m_mutex);
    read = m_queue.Take(bytes, m_runtime.GetTickCount());
    return !m_closed && !m_vanished;
}

// As the control block of time-outs defines it: both 0 means that there is no limit.
Ticks TtyDevice::WriteTimeout(std::size_t bytes) {
    const std::uint64_t multiplier = m_timeouts.WriteTotalTimeoutMultiplier;
    const std::uint64_t constant = m_timeouts.WriteTotalTimeoutConstant;
    if (multiplier == 0 && constant == 0) return infiniteTicks;
    return static_cast<Ticks>(std::min<std::uint64_t>(constant + multiplier * bytes, infiniteTicks - 1));
}

bool TtyDevice::WriteFile(std::string_view bytes, std::size_t& written) {
    written = 0;
    const Ticks start = m_runtime.GetTickCount();
    Ticks limit = 0;
    {
        std::lock_guard lock(m_mutex);
        limit = WriteTimeout(bytes.size());
    }
    while (written < bytes.size()) {
        if (!Usable()) return false;
        const std::string_view rest = bytes.substr(written);
        const ssize_t count = Uninterrupted([&] { return write(m_tty.Get(), rest.data(), rest.size()); });
        if (count > 0) {
            written += static_cast<std::size_t>(count);
            continue;
        }
        if (count < 0 && errno != EAGAIN) {
            NoticeVanished();
            return false;
        }
        const Ticks passed = TicksSince(m_runtime.GetTickCount(), start);
        if (limit != infiniteTicks && passed >= limit) return true;
        pollfd sources[] = {{m_writerWake.Get(), POLLIN, 0}, {m_tty.Get(), POLLOUT, 0}};
        Poll(sources, m_runtime.RealTime(limit == infiniteTicks ? infiniteTicks : limit - passed));
    }
    return true;
}

}  // namespace varkel
