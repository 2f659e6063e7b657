// When received bytes are worth reporting, and how many of them: the input queue of a serial device.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "platform/runtime.h"

namespace varkel {

// A modem sends an answer in one go, but a tty hands it over in any pieces. The queue reports data when the
// line has been quiet for 10 ms, when 100 ms have passed since the first byte, or when 768 bytes wait, so
// that an answer arrives as one chunk. Of more than 512 bytes it counts those up to the last line end and
// leaves the rest queued, because a keyword cut in two is lost; it never cuts inside or directly before a
// closing "\r\n> " prompt.
//
// Not locked: the backend that owns it calls it under its own lock.
class ReceiveQueue {
  public:
    static constexpr std::size_t capacity = 1024;
    static constexpr std::size_t fullEnough = 768;
    static constexpr std::size_t cutAbove = 512;
    static constexpr Ticks quietTime = 10;
    static constexpr Ticks longestWait = 100;

    // How many more bytes fit; the rest stays with the device until somebody reads.
    std::size_t Room() const { return capacity - m_length; }
    // Takes what fits and returns how many bytes that were.
    std::size_t Add(std::string_view bytes, Ticks now);
    void Clear() { m_length = 0; }

    bool Empty() const { return m_length == 0; }
    bool Due(Ticks now) const { return DueIn(now) == 0; }
    // The time until the queue is due if nothing more arrives; infiniteTicks when it is empty.
    Ticks DueIn(Ticks now) const;

    // The bytes that make one chunk now (cbInQue).
    std::size_t ChunkSize() const;
    // Moves the first bytes out, at most `bytes`; what stays counts as received now.
    std::size_t Take(std::span<char> bytes, Ticks now);

  private:
    std::array<char, capacity> m_bytes{};
    std::size_t m_length = 0;
    Ticks m_first = 0;  // when the oldest byte came
    Ticks m_last = 0;   // when the newest byte came
};

}  // namespace varkel
