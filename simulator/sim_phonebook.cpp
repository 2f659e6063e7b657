#include "simulator/sim_phonebook.h"

#include <algorithm>

#include "simulator/charset.h"

namespace varkel::sim {

SimPhonebook::SimPhonebook(int slots, int nameOctets) : m_nameOctets(nameOctets) {
    Resize(slots);
}

int SimPhonebook::Used() const {
    return static_cast<int>(std::count_if(m_entries.begin(), m_entries.end(),
                                          [](const auto& entry) { return entry.has_value(); }));
}

const PhonebookEntry* SimPhonebook::Find(int slot) const {
    if (!Has(slot)) return nullptr;
    const auto& entry = m_entries[static_cast<std::size_t>(slot - 1)];
    return entry ? &*entry : nullptr;
}

PhonebookResult SimPhonebook::Write(int slot, const PhonebookEntry& entry) {
    if (slot == 0) {
        const auto free = std::find(m_entries.begin(), m_entries.end(), std::nullopt);
        if (free == m_entries.end()) return PhonebookResult::Full;
        slot = static_cast<int>(free - m_entries.begin()) + 1;
    }
    if (!Has(slot)) return PhonebookResult::NoSuchSlot;
    std::string_view digits = entry.number;
    if (digits.starts_with('+')) digits.remove_prefix(1);
    if (digits.size() > longestNumber) return PhonebookResult::NumberTooLong;
    if (digits.find_first_not_of("0123456789*#pP?wW") != std::string_view::npos)
        return PhonebookResult::NumberInvalid;
    if (!NameFits(entry.name)) return PhonebookResult::NameTooLong;
    m_entries[static_cast<std::size_t>(slot - 1)] = entry;
    return PhonebookResult::Done;
}

PhonebookResult SimPhonebook::Delete(int slot) {
    if (!Has(slot)) return PhonebookResult::NoSuchSlot;
    m_entries[static_cast<std::size_t>(slot - 1)].reset();
    return PhonebookResult::Done;
}

void SimPhonebook::Resize(int slots) {
    m_entries.resize(static_cast<std::size_t>(std::clamp(slots, 0, mostSlots)));
}

// A name outside the default alphabet takes two octets a unit behind one that says so (TS 31.102, annex A).
bool SimPhonebook::NameFits(std::u16string_view name) const {
    const auto septets = GsmFromUtf16(name);
    const std::size_t octets = septets ? septets->size() : 1 + 2 * name.size();
    return octets <= static_cast<std::size_t>(m_nameOctets);
}

}  // namespace varkel::sim
