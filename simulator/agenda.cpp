#include "simulator/agenda.h"

#include <cassert>

namespace varkel::sim {

void Agenda::At(Millis when, Topic topic, Work work) {
    assert(m_entries.size() < limit);
    m_entries.emplace(std::pair(when, ++m_lastNumber), Entry{topic, std::move(work)});
}

void Agenda::Drop(Topic topic) {
    std::erase_if(m_entries, [topic](const auto& item) { return item.second.topic == topic; });
}

std::optional<Millis> Agenda::Next() const {
    if (m_entries.empty()) return std::nullopt;
    return m_entries.begin()->first.first;
}

void Agenda::Advance(Millis now) {
    while (!m_entries.empty() && m_entries.begin()->first.first <= now) {
        auto node = m_entries.extract(m_entries.begin());
        node.mapped().work(node.key().first);
    }
}

}  // namespace varkel::sim
