// A serial device in virtual time. The test, or the simulated unit, is at the other end of the wire.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "platform/guarded.h"
#include "platform/receive_queue.h"
#include "platform/serial_port.h"

namespace varkel::test {

// One device, "COM7:". Received bytes are reported by the rules of ReceiveQueue, as on a tty.
class VirtualSerial final : public SerialPort {
  public:
    explicit VirtualSerial(Runtime& runtime)
        : m_runtime(runtime), m_changed(runtime.CreateEvent(EventReset::Automatic)) {}

    CommHandle CreateFile(std::string_view deviceName) override;
    int CloseHandle(CommHandle device) override;
    bool GetCommState(CommHandle device, Dcb& result) override {
        result = state;
        return Valid(device, "GetCommState");
    }
    bool SetCommState(CommHandle device, const Dcb& wanted) override {
        state = wanted;
        return Valid(device, "SetCommState");
    }
    bool GetCommTimeouts(CommHandle device, CommTimeouts& result) override {
        result = timeouts;
        return Valid(device, "GetCommTimeouts");
    }
    bool SetCommTimeouts(CommHandle device, const CommTimeouts& wanted) override {
        timeouts = wanted;
        return Valid(device, "SetCommTimeouts");
    }
    bool SetupComm(CommHandle device, std::size_t, std::size_t) override {
        return Valid(device, "SetupComm");
    }
    bool PurgeComm(CommHandle device, std::uint32_t flags) override;
    bool SetCommMask(CommHandle device, std::uint32_t mask) override;
    bool WaitCommEvent(CommHandle device, std::uint32_t& event) override;
    bool ClearCommError(CommHandle device, std::uint32_t& errors, std::size_t& inputQueued) override;
    bool ReadFile(CommHandle device, std::span<char> bytes, std::size_t& read) override;
    bool WriteFile(CommHandle device, std::string_view bytes, std::size_t& written) override;

    // The other end. What does not fit the queue waits in the device.
    void Feed(std::string_view bytes);
    // Reports received data although there is none.
    void FeedNothing();
    // Everything written so far.
    std::string Written() const { return m_written.Get(); }
    void Forget() { m_written.Set({}); }
    bool Open();

    // The device vanishes, or is there again. What was open when it vanished never works again.
    void SetAbsent(bool absent);
    // The name of a call that fails from now on; "" = none.
    void SetFailing(std::string_view call);

    std::atomic<std::size_t> largestWrite = 0;  // a write takes at most so many bytes; 0 = all
    std::atomic<bool> stuck = false;            // writes take nothing
    std::atomic<int> opened = 0;
    // Set before the device is opened.
    std::function<void(std::string_view)> onWrite;
    Dcb state;
    CommTimeouts timeouts;

  private:
    bool Valid(CommHandle device, const char* call);

    Runtime& m_runtime;
    std::shared_ptr<Event> m_changed;
    std::mutex m_mutex;
    std::string m_failing;
    std::uint32_t m_lastHandle = 0;
    CommHandle m_open = CommHandle::Invalid;
    ReceiveQueue m_queue;
    bool m_absent = false;
    std::atomic<bool> m_dead = false;  // the open device has vanished
    std::string m_waiting;             // in the device
    Guarded<std::string> m_written;
    std::atomic<bool> m_waitEnded = false;
    std::atomic<bool> m_emptyEvent = false;
};

}  // namespace varkel::test
