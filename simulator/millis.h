// Time in the simulation: milliseconds since its start, handed in by whoever runs it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace varkel::sim {

using Millis = std::uint64_t;

// "500ms", "2s", "1.5s" or "2m", at most 24 hours; nothing for anything else.
std::optional<Millis> ParseDuration(std::string_view text);
// "500ms" or "2.5s".
std::string DurationText(Millis duration);

}  // namespace varkel::sim
