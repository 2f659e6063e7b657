// The network modes as the registry's "NetworkMode" numbers them and the user reads them.
#pragma once

#include <cstdint>
#include <iterator>
#include <string_view>

namespace varkel {

// 1 to 4, and any other number.
inline constexpr std::string_view networkModeKeys[] = {"IDS_UMTS_ONLY", "IDS_UMTS_PREFERRED", "IDS_GSM_ONLY",
                                                       "IDS_GSM_PREFERRED", "IDS_AUTO"};
inline constexpr std::size_t automaticMode = std::size(networkModeKeys) - 1;

constexpr std::size_t NetworkModeItem(std::uint32_t mode) {
    return mode >= 1 && mode <= automaticMode ? mode - 1 : automaticMode;
}
constexpr std::uint32_t NetworkModeOf(std::size_t item) {
    return item < automaticMode ? static_cast<std::uint32_t>(item) + 1 : 0;
}
constexpr std::string_view NetworkModeKey(std::uint32_t mode) {
    return networkModeKeys[NetworkModeItem(mode)];
}

}  // namespace varkel
