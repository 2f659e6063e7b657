#include "modem/serial_link.h"

#include <string>
#include <utility>

namespace varkel {

namespace {

constexpr std::size_t deviceQueue = 1024;  // bytes, each way
constexpr Ticks stopCheck = 100;           // after each chunk
constexpr Ticks threadEnd = 1000;          // that a thread may take to end
constexpr Ticks writePause = 10;           // before the rest of a buffer is offered again
constexpr std::uint32_t purgeBoth = PURGE_TXCLEAR | PURGE_RXCLEAR;

}  // namespace

bool WritePort(const LinkFields& link, Runtime& runtime, Log& log, std::unique_ptr<char[]>& bytes,
               std::size_t length) {
    log.DebugOutput("WritePort ----------0\r\n");
    ThreadMessage message{CM_THREADCOMMWRITE, length, std::move(bytes)};
    if (runtime.PostThreadMessage(link.writeThreadId, message)) return true;
    bytes = std::move(message.lParam);
    return false;
}

CCESeries::CCESeries(Runtime& runtime, SerialPort& serial, Notices& notices, Log& log)
    : m_runtime(runtime), m_serial(serial), m_notices(notices), m_log(log) {}

CCESeries::~CCESeries() {
    ClosePort();
}

bool CCESeries::OpenPort(void* owner, int port, std::uint32_t baudRate, std::uint8_t /*parity*/,
                         std::uint8_t byteSize, std::uint8_t stopBits) {
    if (m_fields.m_hComm != CommHandle::Invalid) {
        m_log.DebugOutput("m_hComm != INVALID_HANDLE_VALUE-------\r\n");
        return true;
    }
    m_fields.m_hComm = m_serial.CreateFile("COM" + std::to_string(port) + ":");
    if (m_fields.m_hComm == CommHandle::Invalid) return false;
    if (!Configure(baudRate, byteSize, stopBits)) return false;

    m_fields.owner = owner;
    m_serial.SetCommMask(m_fields.m_hComm, EV_RXCHAR);
    m_serial.SetupComm(m_fields.m_hComm, deviceQueue, deviceQueue);
    m_serial.PurgeComm(m_fields.m_hComm, purgeBoth);
    return StartThreads();
}

bool CCESeries::Configure(std::uint32_t baudRate, std::uint8_t byteSize, std::uint8_t stopBits) {
    Dcb state;
    if (!m_serial.GetCommState(m_fields.m_hComm, state)) return false;
    state.BaudRate = baudRate;
    state.ByteSize = byteSize;
    state.Parity = 0;
    state.StopBits = stopBits;
    state.fBinary = true;
    state.fParity = true;
    state.fOutxCtsFlow = false;
    state.fOutxDsrFlow = false;
    state.fDtrControl = true;
    state.fDsrSensitivity = false;
    state.fTXContinueOnXoff = true;
    state.fOutX = false;
    state.fInX = false;
    state.fErrorChar = false;
    state.fNull = false;
    state.fRtsControl = true;
    state.fAbortOnError = false;
    if (!m_serial.SetCommState(m_fields.m_hComm, state)) return false;

    CommTimeouts timeouts;
    if (!m_serial.GetCommTimeouts(m_fields.m_hComm, timeouts)) return false;
    // A read gives at once what is there.
    timeouts.ReadIntervalTimeout = 0xFFFFFFFF;
    timeouts.ReadTotalTimeoutMultiplier = 0;
    timeouts.ReadTotalTimeoutConstant = 0;
    timeouts.WriteTotalTimeoutMultiplier = 10;
    timeouts.WriteTotalTimeoutConstant = 1000;
    return m_serial.SetCommTimeouts(m_fields.m_hComm, timeouts);
}

bool CCESeries::StartThreads() {
    m_fields.stopEvent = m_runtime.CreateEvent(EventReset::Manual);
    m_closing = m_runtime.CreateEvent(EventReset::Manual);

    // The reader begins by purging the device. Nobody may send before that, or the purge would take the first
    // command.
    const auto ready = m_runtime.CreateEvent(EventReset::Manual);
    m_fields.readThread = m_runtime.CreateThread(
        {.name = "serial read"}, [this, link = m_fields, ready] { ReadThreadFunc(link, *ready); });
    if (!m_fields.readThread) {
        m_notices.ShowMessageBox("create readthread failed", "");
        return false;
    }
    m_fields.readThreadId = m_fields.readThread->Id();

    m_fields.writeThread = m_runtime.CreateThread(
        {.name = "serial write"},
        [this, link = m_fields, closing = m_closing] { WriteThreadFunc(link, *closing); });
    if (!m_fields.writeThread) {
        m_notices.ShowMessageBox("create writethread failed", "");
        return false;
    }
    m_fields.writeThreadId = m_fields.writeThread->Id();
    ready->Wait(threadEnd);
    return true;
}

void CCESeries::ReadThreadFunc(const LinkFields& link, Event& ready) {
    m_serial.PurgeComm(link.m_hComm, purgeBoth);
    ready.Set();
    for (;;) {
        m_serial.SetCommMask(link.m_hComm, EV_RXCHAR);
        std::uint32_t event = 0;
        if (m_serial.WaitCommEvent(link.m_hComm, event)) {
            m_log.DebugOutput("ReadThreadFunc 1----------1\r\n");
            // An event without data goes straight to the next wait, without a look at the stop event.
            if ((event & EV_RXCHAR) != 0 && !ReadChunk(link)) continue;
        }
        if (link.stopEvent->Wait(stopCheck) == WaitResult::Object0) return;
    }
}

// False when nothing was queued.
bool CCESeries::ReadChunk(const LinkFields& link) {
    std::uint32_t errors = 0;
    std::size_t queued = 0;
    m_serial.ClearCommError(link.m_hComm, errors, queued);
    if (errors != 0) m_log.DebugOutput("dwReadErrors:%u-----------------\r\n", errors);
    if (queued == 0) return false;

    const auto buffer = std::make_unique<char[]>(queued + 1);
    std::size_t read = 0;
    m_serial.ReadFile(link.m_hComm, {buffer.get(), queued}, read);
    if (read == 0) return true;
    const std::string_view chunk(buffer.get(), read);
    if (m_log.Wants(LogLevel::Trace)) {
        m_log.Trace("[CCESeries::ReadThreadFunc]-----length:%zu...length_read:%zu\r\n%s\r\n", queued, read,
                    LogText(m_log, chunk).CStr());
    }
    if (link.receive) link.receive(link.owner, chunk);
    return true;
}

void CCESeries::WriteThreadFunc(const LinkFields& link, Event& closing) {
    for (;;) {
        const ThreadMessage message = m_runtime.GetMessage();
        if (message.message == CM_THREADCOMMWRITE_CLOSE) return;
        if (message.message != CM_THREADCOMMWRITE) continue;
        if (!WriteSyncPort(link.m_hComm, {message.lParam.get(), message.wParam})) {
            // On a device that is being closed every write fails, and the close message may not have fitted
            // the queue.
            if (closing.Wait(0) == WaitResult::Object0) return;
            if (m_lost) m_lost(link.owner);
            m_notices.MessageBox("write port failed!", "warning", &closing);
        }
    }
}

bool CCESeries::WriteSyncPort(CommHandle device, std::string_view bytes) {
    for (;;) {
        std::size_t written = 0;
        if (!m_serial.WriteFile(device, bytes, written)) return false;
        bytes.remove_prefix(written);
        if (bytes.empty()) return true;
        m_runtime.Sleep(writePause);
    }
}

bool CCESeries::WritePort(std::unique_ptr<char[]>& bytes, std::size_t length) {
    return varkel::WritePort(m_fields, m_runtime, m_log, bytes, length);
}

void CCESeries::ClosePort() {
    if (m_fields.m_hComm == CommHandle::Invalid) return;
    const std::shared_ptr<Thread> readThread = m_fields.readThread;
    const std::shared_ptr<Thread> writeThread = m_fields.writeThread;
    if (m_closing) m_closing->Set();
    if (readThread) CloseReadThread();
    if (writeThread) CloseWriteThread();
    m_log.DebugOutput("err code:%d", m_serial.CloseHandle(m_fields.m_hComm));
    m_fields.m_hComm = CommHandle::Invalid;

    // Closing the device has ended whatever they hung in.
    for (const auto& thread : {readThread, writeThread}) {
        if (thread && thread->Wait(threadEnd) != WaitResult::Object0) {
            m_log.Trace("[CCESeries::ClosePort]--a thread does not end and is left behind");
        }
    }
}

void CCESeries::CloseReadThread() {
    if (m_fields.suspended) {
        m_fields.readThread->ResumeThread();
        m_fields.suspended = false;
    }
    m_fields.stopEvent->Set();
    m_serial.SetCommMask(m_fields.m_hComm, 0);
    m_serial.PurgeComm(m_fields.m_hComm, PURGE_RXCLEAR);
    m_fields.readThread->Wait(threadEnd);
    m_fields.readThread = nullptr;
    m_fields.readThreadId = ThreadId::None;
}

void CCESeries::CloseWriteThread() {
    ThreadMessage close{CM_THREADCOMMWRITE_CLOSE, 0, nullptr};
    if (!m_runtime.PostThreadMessage(m_fields.writeThreadId, close)) {
        m_notices.ShowMessageBox("post CM_THREADCOMMWRITE_CLOSE failed!", "");
    }
    m_serial.PurgeComm(m_fields.m_hComm, PURGE_TXCLEAR);
    m_fields.writeThread->Wait(threadEnd);
    m_fields.writeThread = nullptr;
    m_fields.writeThreadId = ThreadId::None;
}

}  // namespace varkel
