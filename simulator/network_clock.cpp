#include "simulator/network_clock.h"

#include <chrono>
#include <cstdlib>

namespace varkel::sim {

namespace {

constexpr std::uint8_t negativeZone = 0x08;  // in the octet that holds the zone, as it is sent

std::string TwoDigits(unsigned number) {
    return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

char Swapped(unsigned number) {
    return static_cast<char>((number % 10) << 4 | (number / 10 % 10));
}

unsigned Unswapped(char octet) {
    const auto value = static_cast<std::uint8_t>(octet);
    return (value & 0x0Fu) * 10 + (value >> 4);
}

}  // namespace

std::string TimeStampOctets(const NetworkClock& clock, Millis now) {
    using namespace std::chrono;
    const auto seconds = clock.start + clock.zoneQuarters * 15 * 60 + static_cast<std::int64_t>(now / 1000);
    const sys_seconds local{std::chrono::seconds(seconds)};
    const sys_days day = floor<days>(local);
    const year_month_day date(day);
    const hh_mm_ss time(local - day);
    const auto digits = [](auto count) { return Swapped(static_cast<unsigned>(count)); };
    char zone = digits(std::abs(clock.zoneQuarters));
    if (clock.zoneQuarters < 0) zone = static_cast<char>(zone | negativeZone);
    return {digits(int(date.year()) % 100),
            digits(unsigned(date.month())),
            digits(unsigned(date.day())),
            digits(time.hours().count()),
            digits(time.minutes().count()),
            digits(time.seconds().count()),
            zone};
}

std::string TimeStampText(std::string_view octets) {
    constexpr std::size_t zoneAt = 6;
    if (octets.size() <= zoneAt) return {};
    constexpr std::string_view before[] = {"20", "-", "-", " ", ":", ":"};
    std::string text;
    for (std::size_t i = 0; i < zoneAt; ++i)
        text += std::string(before[i]) + TwoDigits(Unswapped(octets[i]));
    const bool negative = (static_cast<std::uint8_t>(octets[zoneAt]) & negativeZone) != 0;
    const unsigned quarters = Unswapped(static_cast<char>(octets[zoneAt] & ~int{negativeZone}));
    return text + (negative ? " -" : " +") + TwoDigits(quarters / 4) + ":" + TwoDigits(quarters % 4 * 15);
}

}  // namespace varkel::sim
