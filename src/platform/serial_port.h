// A serial device, cut along the calls that drive one: CreateFile, SetCommState, WaitCommEvent, ReadFile, ...
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace varkel {

// An open device. Invalid stands for INVALID_HANDLE_VALUE, all bits set.
enum class CommHandle : std::uint32_t { Invalid = 0xFFFFFFFF };

// The members of the device control block that matter to a modem link.
struct Dcb {
    std::uint32_t BaudRate = 0;
    std::uint8_t ByteSize = 8;
    std::uint8_t Parity = 0;    // 0 = NOPARITY
    std::uint8_t StopBits = 0;  // 0 = one stop bit
    bool fBinary = false;
    bool fParity = false;
    bool fOutxCtsFlow = false;
    bool fOutxDsrFlow = false;
    bool fDtrControl = false;  // DTR_CONTROL_ENABLE
    bool fDsrSensitivity = false;
    bool fTXContinueOnXoff = false;
    bool fOutX = false;
    bool fInX = false;
    bool fErrorChar = false;
    bool fNull = false;
    bool fRtsControl = false;  // RTS_CONTROL_ENABLE
    bool fAbortOnError = false;
};

// Milliseconds, as in COMMTIMEOUTS.
struct CommTimeouts {
    std::uint32_t ReadIntervalTimeout = 0;
    std::uint32_t ReadTotalTimeoutMultiplier = 0;
    std::uint32_t ReadTotalTimeoutConstant = 0;
    std::uint32_t WriteTotalTimeoutMultiplier = 0;
    std::uint32_t WriteTotalTimeoutConstant = 0;
};

inline constexpr std::uint32_t EV_RXCHAR = 0x0001;
inline constexpr std::uint32_t PURGE_TXCLEAR = 0x0004;
inline constexpr std::uint32_t PURGE_RXCLEAR = 0x0008;

// One opened device is read by one thread and written by one other; the rest may be called from any thread. A
// failing call returns false.
class SerialPort {
  public:
    virtual ~SerialPort() = default;

    // Opens a device by its name ("COM7:") for reading and writing, not shared.
    virtual CommHandle CreateFile(std::string_view deviceName) = 0;
    // Ends every wait, read and write on the handle. Returns the system's error number, 0 when all went well.
    virtual int CloseHandle(CommHandle device) = 0;

    virtual bool GetCommState(CommHandle device, Dcb& state) = 0;
    virtual bool SetCommState(CommHandle device, const Dcb& state) = 0;
    virtual bool GetCommTimeouts(CommHandle device, CommTimeouts& timeouts) = 0;
    virtual bool SetCommTimeouts(CommHandle device, const CommTimeouts& timeouts) = 0;
    virtual bool SetupComm(CommHandle device, std::size_t inputQueue, std::size_t outputQueue) = 0;
    virtual bool PurgeComm(CommHandle device, std::uint32_t flags) = 0;

    // Says which events WaitCommEvent reports. A mask of 0 ends the pending wait or, when none is pending,
    // the next one, even if another mask is set in between.
    virtual bool SetCommMask(CommHandle device, std::uint32_t mask) = 0;
    // Waits for an event: true and the event, or true and 0 when SetCommMask ended the wait. Received data is
    // reported by the rules of ReceiveQueue. A device that has vanished reports nothing any more.
    virtual bool WaitCommEvent(CommHandle device, std::uint32_t& event) = 0;
    // Line errors since the last call, and the number of bytes that ReadFile will give at once (cbInQue).
    virtual bool ClearCommError(CommHandle device, std::uint32_t& errors, std::size_t& inputQueued) = 0;

    // Takes what is queued, at most `bytes`; never waits.
    virtual bool ReadFile(CommHandle device, std::span<char> bytes, std::size_t& read) = 0;
    // Writes until all is written or the write time-out has passed; `written` may be less than asked, even 0.
    virtual bool WriteFile(CommHandle device, std::string_view bytes, std::size_t& written) = 0;
};

}  // namespace varkel
