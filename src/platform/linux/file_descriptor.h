// File descriptors with an owner, waiting on several of them, and waking a waiter up.
#pragma once

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <optional>
#include <poll.h>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace varkel {

// Repeats a system call for as long as a signal interrupts it.
template <class SystemCall>
auto Uninterrupted(SystemCall call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

// Owns one descriptor, or none (-1).
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        Reset(std::exchange(other.m_fd, -1));
        return *this;
    }
    ~FileDescriptor() { Reset(); }

    int Get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }
    int Release() { return std::exchange(m_fd, -1); }
    void Reset(int fd = -1);

  private:
    int m_fd = -1;
};

inline constexpr auto forever = std::chrono::microseconds::max();

// Waits until one of `descriptors` is ready; false when none was within `timeout`.
bool Poll(std::span<pollfd> descriptors, std::chrono::microseconds timeout);

// Writes all of it; false on an error, which includes a descriptor that would block.
bool WriteAll(int fd, std::string_view bytes);
// Reads up to the end of the file; nothing on an error or when more than `limit` bytes come.
std::optional<std::string> ReadAll(int fd, std::size_t limit);

// A descriptor that becomes readable by Signal and stays so until Clear. Any thread.
class WakeUp {
  public:
    WakeUp();
    int Get() const { return m_event.Get(); }
    void Signal();
    void Clear();

  private:
    FileDescriptor m_event;
};

}  // namespace varkel
