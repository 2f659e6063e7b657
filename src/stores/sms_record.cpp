#include "stores/sms_record.h"

#include <cstdio>
#include <cstring>

namespace varkel {

SmsRecord MakeSmsRecord(const SmsTime& time, std::string_view number, std::string_view content,
                        SmsState state) {
    SmsRecord record;
    record.szTime = time;
    record.szPhoneNo.Assign(number.substr(0, 15));
    record.szContent.Assign(content.substr(0, 160));
    record.Index = state;
    return record;
}

SmsTime SmsTimeFromStamp(std::string_view stamp) {
    char text[] = "2000-00-00 00:00";
    constexpr std::size_t places[] = {2, 3, 5, 6, 8, 9, 11, 12, 14, 15};
    std::size_t digits = 0;
    for (const char c : stamp) {
        if (digits == std::size(places)) break;
        if (c >= '0' && c <= '9') text[places[digits++]] = c;
    }
    return SmsTime(text);
}

SmsTime SmsTimeFromLocal(const LocalTime& time) {
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d", time.year, time.month, time.day, time.hour,
                  time.minute);
    return SmsTime(text);
}

bool IsSameMessage(const SmsRecord& a, const SmsRecord& b) {
    return std::memcmp(&a, &b, offsetof(SmsRecord, Index)) == 0;
}

}  // namespace varkel
