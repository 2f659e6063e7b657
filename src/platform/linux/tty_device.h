// One open tty, from CreateFile to CloseHandle.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "platform/linux/file_descriptor.h"
#include "platform/linux/linux_runtime.h"
#include "platform/receive_queue.h"
#include "platform/serial_port.h"

namespace varkel {

// The functions of SerialPort for one device, with its rules of threads. Whoever uses the device shares it,
// and the last one to let go closes the descriptor, so that no call ever meets a descriptor that another open
// has got meanwhile.
class TtyDevice {
  public:
    // Opens the tty for this program alone, in raw mode. Null when it is none, cannot be opened or belongs to
    // another program. `onVanished` is called once, on the thread that notices.
    static std::shared_ptr<TtyDevice> Open(LinuxRuntime& runtime, const std::string& path,
                                           std::function<void()> onVanished);
    ~TtyDevice();

    // Ends every wait and every call from now on.
    void Close();

    bool GetCommState(Dcb& state);
    bool SetCommState(const Dcb& state);
    bool GetCommTimeouts(CommTimeouts& timeouts);
    bool SetCommTimeouts(const CommTimeouts& timeouts);
    bool PurgeComm(std::uint32_t flags);
    bool SetCommMask(std::uint32_t mask);
    bool WaitCommEvent(std::uint32_t& event);
    bool ClearCommError(std::uint32_t& errors, std::size_t& inputQueued);
    bool ReadFile(std::span<char> bytes, std::size_t& read);
    bool WriteFile(std::string_view bytes, std::size_t& written);
    // Neither closed nor vanished.
    bool Usable();

  private:
    // How often the line has failed since the driver was loaded, each kind with its own error bit.
    struct ErrorCounts {
        int overrun = 0;
        int parity = 0;
        int frame = 0;
        int breaks = 0;
        int bufferOverrun = 0;
    };

    TtyDevice(LinuxRuntime& runtime, FileDescriptor tty, std::function<void()> onVanished);

    bool SetUp();
    void SetModemLine(int line, bool on);
    ErrorCounts CountErrors() const;
    // Takes what the tty has into the queue; false when the device has vanished. Under the lock.
    bool Fill();
    void NoticeVanished();
    Ticks WriteTimeout(std::size_t bytes);

    LinuxRuntime& m_runtime;
    const FileDescriptor m_tty;
    const std::function<void()> m_onVanished;
    WakeUp m_readerWake;
    WakeUp m_writerWake;  // never cleared: nothing but the end of the device signals it

    std::mutex m_mutex;
    ReceiveQueue m_queue;
    Dcb m_state;
    CommTimeouts m_timeouts;
    ErrorCounts m_reportedErrors;
    std::uint32_t m_mask = 0;
    bool m_endWait = false;  // SetCommMask(0) was called and no wait has ended by it yet
    bool m_closed = false;
    bool m_vanished = false;
};

}  // namespace varkel
