// The phonebook on the SIM card (3GPP TS 31.102, EF ADN).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varkel::sim {

struct PhonebookEntry {
    std::string number;  // digits, "*", "#", maybe a "+" in front
    int type = 129;      // 145 = international
    std::u16string name;
};

enum class PhonebookResult { Done, NoSuchSlot, Full, NameTooLong, NumberTooLong, NumberInvalid };

// Slots are numbered from 1.
class SimPhonebook {
  public:
    SimPhonebook(int slots, int nameOctets);

    int Slots() const { return static_cast<int>(m_entries.size()); }
    int Used() const;
    int NameOctets() const { return m_nameOctets; }
    bool Has(int slot) const { return slot >= 1 && slot <= Slots(); }
    // Null when the slot is empty or there is no such slot.
    const PhonebookEntry* Find(int slot) const;

    // Into a slot, or with 0 into the first free one.
    PhonebookResult Write(int slot, const PhonebookEntry& entry);
    PhonebookResult Delete(int slot);
    // A card with other slots; what has no place is lost.
    void Resize(int slots);

    static constexpr std::size_t longestNumber = 20;
    static constexpr int mostSlots = 1000;

  private:
    bool NameFits(std::u16string_view name) const;

    std::vector<std::optional<PhonebookEntry>> m_entries;
    int m_nameOctets;
};

}  // namespace varkel::sim
