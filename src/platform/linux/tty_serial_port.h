// Serial devices that are ttys: a modem's own, a USB converter's, or a pseudo-terminal.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/linux/linux_runtime.h"
#include "platform/serial_port.h"

namespace varkel {

class TtyDevice;

class TtySerialPort final : public SerialPort {
  public:
    // The tty of a device name such as "COM7:"; "" when there is none. Any thread.
    using TtyPath = std::function<std::string(std::string_view deviceName)>;
    // A device has vanished: told once for each time it was opened, on the thread that noticed.
    using Vanished = std::function<void(std::string_view deviceName)>;

    TtySerialPort(LinuxRuntime& runtime, TtyPath ttyPath, Vanished onVanished);
    // Closes what is still open; nobody may be inside a call.
    ~TtySerialPort() override;

    CommHandle CreateFile(std::string_view deviceName) override;
    int CloseHandle(CommHandle device) override;
    bool GetCommState(CommHandle device, Dcb& state) override;
    bool SetCommState(CommHandle device, const Dcb& state) override;
    bool GetCommTimeouts(CommHandle device, CommTimeouts& timeouts) override;
    bool SetCommTimeouts(CommHandle device, const CommTimeouts& timeouts) override;
    // The kernel sizes its queues itself; the input is bounded by ReceiveQueue.
    bool SetupComm(CommHandle device, std::size_t inputQueue, std::size_t outputQueue) override;
    bool PurgeComm(CommHandle device, std::uint32_t flags) override;
    bool SetCommMask(CommHandle device, std::uint32_t mask) override;
    bool WaitCommEvent(CommHandle device, std::uint32_t& event) override;
    bool ClearCommError(CommHandle device, std::uint32_t& errors, std::size_t& inputQueued) override;
    bool ReadFile(CommHandle device, std::span<char> bytes, std::size_t& read) override;
    bool WriteFile(CommHandle device, std::string_view bytes, std::size_t& written) override;

  private:
    std::shared_ptr<TtyDevice> Find(CommHandle device) const;

    LinuxRuntime& m_runtime;
    const TtyPath m_ttyPath;
    const Vanished m_onVanished;
    mutable std::mutex m_mutex;
    std::uint32_t m_lastHandle = 0;  // a handle is never given twice
    std::map<CommHandle, std::shared_ptr<TtyDevice>> m_devices;
};

}  // namespace varkel
