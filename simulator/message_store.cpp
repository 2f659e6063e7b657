#include "simulator/message_store.h"

#include <algorithm>

namespace varkel::sim {

MessageStore::MessageStore(int slots)
    : m_messages(static_cast<std::size_t>(std::clamp(slots, 0, mostSlots))) {}

int MessageStore::Used() const {
    return static_cast<int>(std::count_if(m_messages.begin(), m_messages.end(),
                                          [](const auto& message) { return message.has_value(); }));
}

StoredMessage* MessageStore::Find(int slot) {
    if (!Has(slot)) return nullptr;
    auto& message = m_messages[static_cast<std::size_t>(slot - 1)];
    return message ? &*message : nullptr;
}

std::optional<int> MessageStore::Add(StoredMessage message) {
    const auto free = std::find_if(m_messages.begin(), m_messages.end(),
                                   [](const auto& place) { return !place.has_value(); });
    if (free == m_messages.end()) return std::nullopt;
    *free = std::move(message);
    return static_cast<int>(free - m_messages.begin()) + 1;
}

void MessageStore::Delete(int slot) {
    if (Has(slot)) m_messages[static_cast<std::size_t>(slot - 1)].reset();
}

void MessageStore::Clear() {
    std::fill(m_messages.begin(), m_messages.end(), std::nullopt);
}

}  // namespace varkel::sim
