// The module's serial device: a pseudo-terminal, and a symbolic link under a name that stays the same.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/file_descriptor.h"

namespace varkel::sim {

// The link exists as long as the device does. Whoever has the device open when it goes sees a hang-up.
class Pty {
  public:
    // Null when the system gives none; errno tells why.
    static std::unique_ptr<Pty> Open(const std::string& link);
    ~Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    int Descriptor() const { return m_master.Get(); }
    // What the program has written.
    std::string Read();
    // Sends, or keeps for Flush what the program does not take yet.
    void Write(std::string_view bytes);
    bool Waiting() const { return !m_waiting.empty(); }
    void Flush();

    static constexpr std::size_t mostWaiting = 64 * 1024;  // bytes; what is beyond is lost

  private:
    Pty(FileDescriptor master, FileDescriptor slave, std::string link)
        : m_master(std::move(master)), m_slave(std::move(slave)), m_link(std::move(link)) {}

    FileDescriptor m_master;
    // Held open, so that the device keeps its settings, and the master its peace, while no program has it.
    FileDescriptor m_slave;
    std::string m_link;
    std::string m_waiting;
};

}  // namespace varkel::sim
