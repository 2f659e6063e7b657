#include "platform/linux/file_descriptor.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

namespace varkel {

void FileDescriptor::Reset(int fd) {
    // Linux closes the descriptor even when close() reports EINTR, so it is never repeated.
    if (m_fd >= 0) close(m_fd);
    m_fd = fd;
}

bool Poll(std::span<pollfd> descriptors, std::chrono::microseconds timeout) {
    using Clock = std::chrono::steady_clock;
    using Micros = std::chrono::microseconds;
    const auto start = Clock::now();
    Micros left = timeout;
    for (;;) {
        const auto micros = std::max<std::int64_t>(left.count(), 0);
        const timespec limit{static_cast<time_t>(micros / 1'000'000),
                             static_cast<long>(micros % 1'000'000 * 1000)};
        const int ready = ppoll(descriptors.data(), static_cast<nfds_t>(descriptors.size()),
                                timeout == forever ? nullptr : &limit, nullptr);
        if (ready > 0) return true;
        for (pollfd& descriptor : descriptors)
            descriptor.revents = 0;
        if (ready == 0 || errno != EINTR) return false;
        if (timeout != forever) left = timeout - std::chrono::duration_cast<Micros>(Clock::now() - start);
    }
}

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = Uninterrupted([&] { return write(fd, bytes.data(), bytes.size()); });
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

std::optional<std::string> ReadAll(int fd, std::size_t limit) {
    std::string bytes;
    for (;;) {
        char buffer[4096];
        const ssize_t count = Uninterrupted([&] { return read(fd, buffer, sizeof buffer); });
        if (count < 0) return std::nullopt;
        if (count == 0) return bytes;
        if (bytes.size() + static_cast<std::size_t>(count) > limit) return std::nullopt;
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
}

WakeUp::WakeUp() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    assert(m_event);
}

void WakeUp::Signal() {
    const std::uint64_t one = 1;
    // The counter cannot overflow in practice; a refused write would mean that it is readable already.
    [[maybe_unused]] const ssize_t written = write(m_event.Get(), &one, sizeof one);
}

void WakeUp::Clear() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(m_event.Get(), &count, sizeof count);
}

}  // namespace varkel
