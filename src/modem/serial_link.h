// The byte link to the modem: one serial device, a thread that reads it and a thread that writes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/log.h"
#include "platform/notices.h"
#include "platform/runtime.h"
#include "platform/serial_port.h"

namespace varkel {

// Thread messages of the writer.
inline constexpr std::uint32_t CM_THREADCOMMWRITE = 0x46E;  // wParam: number of bytes, lParam: the bytes
inline constexpr std::uint32_t CM_THREADCOMMWRITE_CLOSE = 0x46F;  // ends the thread

// Gets each chunk of received bytes on the read thread. A NUL follows the last byte; the bytes are lent.
using ReceiveCallback = void (*)(void* owner, std::string_view chunk);

// The device takes no more bytes: it has vanished. On the write thread.
using LostCallback = void (*)(void* owner);

// The link's state. Whoever sends through the link keeps a copy, taken right after it was opened.
struct LinkFields {
    bool suspended = false;  // the read thread is suspended and must be resumed before it can end
    CommHandle m_hComm = CommHandle::Invalid;
    void* owner = nullptr;
    std::shared_ptr<Thread> readThread;
    std::shared_ptr<Thread> writeThread;
    ThreadId readThreadId = ThreadId::None;
    ThreadId writeThreadId = ThreadId::None;
    std::shared_ptr<Event> stopEvent;
    ReceiveCallback receive = nullptr;
};

// Queues a buffer for the writer of the link with these fields. On success the buffer has moved to the
// writer; when no writer runs or its queue is full the buffer stays with the caller. Any thread.
[[nodiscard]] bool WritePort(const LinkFields& link, Runtime& runtime, Log& log,
                             std::unique_ptr<char[]>& bytes, std::size_t length);

// Opened and closed by one thread at a time. It knows nothing of AT commands.
class CCESeries {
  public:
    CCESeries(Runtime& runtime, SerialPort& serial, Notices& notices, Log& log);
    virtual ~CCESeries();
    CCESeries(const CCESeries&) = delete;
    CCESeries& operator=(const CCESeries&) = delete;

    // Both before OpenPort.
    void SetReceiveCallback(ReceiveCallback receive) { m_fields.receive = receive; }
    void SetLostCallback(LostCallback lost) { m_lost = lost; }

    // Opens "COM<port>:" and starts both threads. `stopBits` 0 is one stop bit; the line has no parity
    // whatever `parity` says. True when it is open already. After a false the device may still be held:
    // ClosePort releases it.
    [[nodiscard]] bool OpenPort(void* owner, int port, std::uint32_t baudRate, std::uint8_t parity,
                                std::uint8_t byteSize, std::uint8_t stopBits);
    // Ends both threads and closes the device; does nothing when it is closed. Not on the read thread.
    void ClosePort();
    [[nodiscard]] bool WritePort(std::unique_ptr<char[]>& bytes, std::size_t length);

    const LinkFields& Fields() const { return m_fields; }

  private:
    bool Configure(std::uint32_t baudRate, std::uint8_t byteSize, std::uint8_t stopBits);
    bool StartThreads();
    void CloseReadThread();
    void CloseWriteThread();

    // The bodies use copies of what they need, so that one that hangs in the system outlives the link
    // unharmed.
    void ReadThreadFunc(const LinkFields& link, Event& ready);
    void WriteThreadFunc(const LinkFields& link, Event& closing);
    bool WriteSyncPort(CommHandle device, std::string_view bytes);
    bool ReadChunk(const LinkFields& link);

    Runtime& m_runtime;
    SerialPort& m_serial;
    Notices& m_notices;
    Log& m_log;
    LinkFields m_fields;
    LostCallback m_lost = nullptr;
    std::shared_ptr<Event> m_closing;  // ends the writer's message box
};

}  // namespace varkel
