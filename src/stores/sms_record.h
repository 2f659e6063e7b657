// A short message as the message boxes hold it.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "platform/fixed_text.h"
#include "platform/runtime.h"

namespace varkel {

enum class SmsState : char {
    Unread = 'u',  // received and not yet opened
    Opened = '0',  // opened, or a sent or draft message
};

using SmsTime = FixedText<16>;

// Texts are bytes in the unit's text code page. A record from a file may hold anything, so its fields are
// read by View() only, which never leaves them.
struct SmsRecord {
    SmsTime szTime;            // "2009-03-07 18:05": full, so that no NUL follows
    FixedText<16> szPhoneNo;   // at most 15 characters and a NUL
    FixedText<161> szContent;  // at most 160 bytes and a NUL
    SmsState Index = SmsState::Opened;
};
static_assert(std::is_trivially_copyable_v<SmsRecord>);
static_assert(sizeof(SmsRecord) == 194);
static_assert(offsetof(SmsRecord, szTime) == 0);
static_assert(offsetof(SmsRecord, szPhoneNo) == 16);
static_assert(offsetof(SmsRecord, szContent) == 32);
static_assert(offsetof(SmsRecord, Index) == 193);

// Number and content are cut to what their fields hold. The store does not know the code page: whoever cuts
// at characters does so before.
SmsRecord MakeSmsRecord(const SmsTime& time, std::string_view number, std::string_view content,
                        SmsState state);

// From a service-centre time stamp, by its first ten digits YYMMDDhhmm; the century is always 20. What a
// damaged stamp lacks is filled with zeros.
SmsTime SmsTimeFromStamp(std::string_view stamp);
SmsTime SmsTimeFromLocal(const LocalTime& time);

// The same message, read or unread.
bool IsSameMessage(const SmsRecord& a, const SmsRecord& b);

}  // namespace varkel
