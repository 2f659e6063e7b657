// The network's time of day, as messages carry it (3GPP TS 23.040, 9.2.3.11).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/millis.h"

namespace varkel::sim {

// The unit has no clock: whoever runs it says what time it is when the simulation starts.
struct NetworkClock {
    std::int64_t start =
        1'704'067'200;      // seconds since 1970 began, UTC; 1 January 2024, 8 o'clock in the zone
    int zoneQuarters = 32;  // quarters of an hour ahead of UTC, -48 to 56
};

// Seven octets: year, month, day, hour, minute, second and zone in swapped digits.
std::string TimeStampOctets(const NetworkClock& clock, Millis now);
// "2024-01-01 08:00:00 +08:00", whatever the digits mean; "" when there are not seven octets.
std::string TimeStampText(std::string_view octets);

}  // namespace varkel::sim
