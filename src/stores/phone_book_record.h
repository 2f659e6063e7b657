// An entry of the local phonebook.
#pragma once

#include <array>
#include <cstddef>
#include <type_traits>

#include "platform/fixed_text.h"

namespace varkel {

// Texts are bytes in the unit's text code page, of at most 59 bytes and a NUL. A record from a file may hold
// anything, so its fields are read by View() only.
struct PhoneBookRecord {
    FixedText<60> name;
    std::array<FixedText<60>, 4> numbers;

    static constexpr std::size_t longestText = 59;
};
static_assert(std::is_trivially_copyable_v<PhoneBookRecord>);
static_assert(sizeof(PhoneBookRecord) == 300);
static_assert(offsetof(PhoneBookRecord, name) == 0);
static_assert(offsetof(PhoneBookRecord, numbers) == 60);

}  // namespace varkel
