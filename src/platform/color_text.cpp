#include "platform/color_text.h"

#include <charconv>

namespace varkel {

std::optional<std::uint32_t> ParseColor(std::string_view text) {
    constexpr std::size_t length = 7;
    if (text.size() != length || text[0] != '#') return std::nullopt;
    std::uint32_t rgb = 0;
    const char* const textEnd = text.data() + length;
    const auto [end, error] = std::from_chars(text.data() + 1, textEnd, rgb, 16);
    if (error != std::errc() || end != textEnd) return std::nullopt;
    return rgb;
}

}  // namespace varkel
