#include "stores/call_record.h"

#include <cstdio>

namespace varkel {

CallRecord MakeCallRecord(const LocalTime& when, std::string_view name, std::string_view number) {
    char text[40];
    CallRecord record;
    std::snprintf(text, sizeof text, "%d-%02d-%02d", when.year, when.month, when.day);
    record.date.Assign(std::string_view(text).substr(0, 10));
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", when.hour, when.minute, when.second);
    record.time.Assign(std::string_view(text).substr(0, 8));
    record.name.Assign(name);
    record.number.Assign(number);
    return record;
}

}  // namespace varkel
