#include "simulator/wire.h"

#include <algorithm>

namespace varkel::sim {

void Wire::Send(std::string_view bytes, Burst kind, Millis now) {
    if (bytes.empty()) return;
    const bool answer = kind == Burst::Answer;
    if (answer && m_random.Chance(m_faults.lose)) return;
    const Millis before = m_flights.empty() ? 0 : m_flights.back().arrival;
    const Millis arrival = std::max(now + m_faults.late, before);
    Put(bytes, arrival);
    if (answer && m_random.Chance(m_faults.repeat)) Put(bytes, arrival);
}

void Wire::Put(std::string_view bytes, Millis arrival) {
    if (m_waiting + bytes.size() > limit) return;
    std::string sent(bytes);
    if (m_faults.noise > 0) {
        for (char& byte : sent) {
            // One of the 255 other values.
            if (m_random.Chance(m_faults.noise))
                byte = static_cast<char>(static_cast<unsigned char>(byte) + 1 + m_random.Below(255));
        }
    }
    m_waiting += sent.size();
    m_flights.push_back({arrival, std::move(sent)});
}

std::string Wire::Take(Millis now) {
    if (m_flights.empty() || m_flights.front().arrival > now) return {};
    std::string& first = m_flights.front().bytes;
    std::string piece;
    if (m_faults.split == 0 || first.size() <= m_faults.split) {
        piece = std::move(first);
        m_flights.pop_front();
    } else {
        piece = first.substr(0, m_faults.split);
        first.erase(0, m_faults.split);
    }
    m_waiting -= piece.size();
    return piece;
}

std::optional<Millis> Wire::Next() const {
    if (m_flights.empty()) return std::nullopt;
    return m_flights.front().arrival;
}

void Wire::Clear() {
    m_flights.clear();
    m_waiting = 0;
}

}  // namespace varkel::sim
