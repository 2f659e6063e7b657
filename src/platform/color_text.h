// Colours as people write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace varkel {

// "#RRGGBB", as 0xRRGGBB; nothing for any other text.
std::optional<std::uint32_t> ParseColor(std::string_view text);

}  // namespace varkel
