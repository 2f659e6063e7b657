#include "simulator/millis.h"

#include <array>
#include <charconv>
#include <cmath>

namespace varkel::sim {

namespace {

struct Unit {
    std::string_view name;
    double millis;
};

constexpr std::array<Unit, 3> units{{{"ms", 1}, {"s", 1000}, {"m", 60'000}}};
constexpr double longest = 24.0 * 3600 * 1000;

}  // namespace

std::optional<Millis> ParseDuration(std::string_view text) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (fault != std::errc()) return std::nullopt;
    const std::string_view name(rest, static_cast<std::size_t>(end - rest));
    for (const Unit& unit : units) {
        if (name != unit.name) continue;
        const double millis = number * unit.millis;
        if (!(millis >= 0 && millis <= longest)) return std::nullopt;
        return static_cast<Millis>(std::llround(millis));
    }
    return std::nullopt;
}

std::string DurationText(Millis duration) {
    if (duration < 1000) return std::to_string(duration) + "ms";
    std::string text = std::to_string(duration / 1000);
    if (duration % 1000 != 0) {
        std::string fraction = std::to_string(1000 + duration % 1000).substr(1);
        fraction.erase(fraction.find_last_not_of('0') + 1);
        text += "." + fraction;
    }
    return text + "s";
}

}  // namespace varkel::sim
