// The two skins that are installed with the program, and which of them a start shows.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace varkel {

// Auto is day from 7 to 19 o'clock.
enum class PaletteChoice { Night, Day, Auto };

// "night", "day" or "auto", in any case.
std::optional<PaletteChoice> ParsePalette(std::string_view name);

// A read-only directory of the unit's shape with pictures and "palette.txt"; beside them "registry.txt" has
// the colours and sizes of texts as an initial registry.
struct Skin {
    std::string directory;
    std::string other;  // the directory of the skin that is not shown
};

// `hour` is the local time's.
Skin ChooseSkin(const std::string& assets, PaletteChoice choice, int hour);

// Gives the registry's "CharacterAttr" the values of `shown`. What somebody has set by hand stays: only what
// is missing, or is as `other` has it, changes; the three parts of a colour only together. Both texts are
// initial registries. Returns what was wrong with `shown`.
std::vector<std::string> FollowSkin(Registry& registry, std::string_view shown, std::string_view other);

}  // namespace varkel
