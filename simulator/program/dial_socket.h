// The way between the unit's dialling program, which is a process of its own, and the simulator: a socket in
// the unit's directory that keeps packets apart.
//
//     program    "dial USER"    once, at first        "hangup"
//     simulator  "line TEXT"    to be printed         "end CODE"    the last one
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/file_descriptor.h"

namespace varkel::sim {

struct DialSocketHooks {
    std::function<void(std::string_view user)> dial;
    std::function<void()> hangUp;
    std::function<void()> gone;  // it was there and has vanished
};

// Serves one program at a time; the next one waits until that has gone. Main thread.
class DialSocket {
  public:
    // Null when the system refuses; errno tells why.
    static std::unique_ptr<DialSocket> Open(const std::string& directory, DialSocketHooks hooks);
    ~DialSocket();
    DialSocket(const DialSocket&) = delete;
    DialSocket& operator=(const DialSocket&) = delete;

    // Readable when Serve has something to do.
    int Descriptor() const { return m_program ? m_program.Get() : m_listener.Get(); }
    void Serve();

    // For the program that is served. One that does not read is let go.
    void Print(std::string_view line);
    void End(int code);

  private:
    DialSocket(FileDescriptor directory, FileDescriptor listener, DialSocketHooks hooks)
        : m_directory(std::move(directory)), m_listener(std::move(listener)), m_hooks(std::move(hooks)) {}

    const FileDescriptor m_directory;
    const FileDescriptor m_listener;
    const DialSocketHooks m_hooks;
    FileDescriptor m_program;
};

// The program's end of it; none when no simulator runs in that directory.
FileDescriptor ConnectDialSocket(const std::string& directory);

inline constexpr std::size_t longestDialPacket = 512;

// The next packet, cut at its bound; nothing at the end of the connection.
std::optional<std::string> ReceiveDialPacket(const FileDescriptor& socket);
bool SendDialPacket(const FileDescriptor& socket, std::string_view packet);

}  // namespace varkel::sim
