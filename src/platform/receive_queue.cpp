#include "platform/receive_queue.h"

#include <algorithm>

namespace varkel {

std::size_t ReceiveQueue::Add(std::string_view bytes, Ticks now) {
    const std::size_t count = std::min(bytes.size(), Room());
    if (count == 0) return 0;
    if (m_length == 0) m_first = now;
    m_last = now;
    std::copy_n(bytes.data(), count, m_bytes.data() + m_length);
    m_length += count;
    return count;
}

Ticks ReceiveQueue::DueIn(Ticks now) const {
    if (m_length == 0) return infiniteTicks;
    if (m_length >= fullEnough) return 0;
    const auto left = [now](Ticks since, Ticks limit) {
        const Ticks passed = TicksSince(now, since);
        return passed >= limit ? 0 : limit - passed;
    };
    return std::min(left(m_last, quietTime), left(m_first, longestWait));
}

std::size_t ReceiveQueue::ChunkSize() const {
    const std::string_view queued(m_bytes.data(), m_length);
    if (m_length <= cutAbove) return m_length;

    if (queued.ends_with("\r\n> ")) return queued.size();
    // A prompt that is still arriving keeps its line end.
    const std::size_t searched = queued.ends_with("\r\n>") ? queued.size() - 3 : queued.size();
    const std::size_t lineEnd = queued.substr(0, searched).rfind("\r\n");
    return lineEnd == std::string_view::npos ? queued.size() : lineEnd + 2;
}

std::size_t ReceiveQueue::Take(std::span<char> bytes, Ticks now) {
    const std::size_t count = std::min(bytes.size(), m_length);
    std::copy_n(m_bytes.data(), count, bytes.data());
    std::copy(m_bytes.data() + count, m_bytes.data() + m_length, m_bytes.data());
    m_length -= count;
    m_first = now;
    return count;
}

}  // namespace varkel
