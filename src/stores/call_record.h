// A call as the call lists hold it.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "platform/fixed_text.h"
#include "platform/runtime.h"

namespace varkel {

// Texts are bytes in the unit's text code page; name and number have no NUL when they are full, so they are
// read by View() only.
struct CallRecord {
    FixedText<11> date;  // "2009-03-07" and a NUL
    FixedText<9> time;   // "18:05:00" and a NUL
    FixedText<40> name;  // as the call screen showed the other party
    FixedText<40> number;
};
static_assert(std::is_trivially_copyable_v<CallRecord>);
static_assert(sizeof(CallRecord) == 100);
static_assert(offsetof(CallRecord, date) == 0);
static_assert(offsetof(CallRecord, time) == 11);
static_assert(offsetof(CallRecord, name) == 20);
static_assert(offsetof(CallRecord, number) == 60);

// Name and number are cut to what their fields hold. The store does not know the code page: whoever cuts at
// characters does so before.
CallRecord MakeCallRecord(const LocalTime& when, std::string_view name, std::string_view number);

}  // namespace varkel
