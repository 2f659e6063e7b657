#include "platform/linux/skin.h"

#include <algorithm>

#include "platform/linux/initial_registry.h"
#include "platform/text.h"

namespace varkel {

namespace {

// The name without the part of the colour that it stands for.
std::string_view Whole(std::string_view name) {
    for (const std::string_view part : {"Red", "Green", "Blue"}) {
        if (name.ends_with(part)) return name.substr(0, name.size() - part.size());
    }
    return name;
}

std::optional<RegistryValue> Stored(Registry& registry, const InitialValue& value) {
    bool created = false;
    const auto key = registry.RegCreateKeyEx(value.key, created);
    return key ? key->RegQueryValueEx(value.name) : std::nullopt;
}

bool IsSetByHand(Registry& registry, const InitialValue& value, const std::vector<InitialValue>& other) {
    const auto stored = Stored(registry, value);
    if (!stored || *stored == value.value) return false;
    return std::none_of(other.begin(), other.end(), [&](const InitialValue& former) {
        return EqualIgnoringCase(former.key, value.key) && EqualIgnoringCase(former.name, value.name) &&
               former.value == *stored;
    });
}

}  // namespace

std::optional<PaletteChoice> ParsePalette(std::string_view name) {
    if (EqualIgnoringCase(name, "night")) return PaletteChoice::Night;
    if (EqualIgnoringCase(name, "day")) return PaletteChoice::Day;
    if (EqualIgnoringCase(name, "auto")) return PaletteChoice::Auto;
    return std::nullopt;
}

Skin ChooseSkin(const std::string& assets, PaletteChoice choice, int hour) {
    constexpr int dayBegins = 7, dayEnds = 19;
    const bool light = hour >= dayBegins && hour < dayEnds;
    const bool day = choice == PaletteChoice::Day || (choice == PaletteChoice::Auto && light);
    const std::string prefix = assets + "/skin-";
    return day ? Skin{prefix + "day", prefix + "night"} : Skin{prefix + "night", prefix + "day"};
}

std::vector<std::string> FollowSkin(Registry& registry, std::string_view shown, std::string_view other) {
    std::vector<std::string> problems;
    std::vector<std::string> ignored;
    const auto values = ParseInitialRegistry(shown, problems);
    const auto former = ParseInitialRegistry(other, ignored);
    std::vector<std::string_view> kept;
    for (const InitialValue& value : values) {
        if (IsSetByHand(registry, value, former)) kept.push_back(Whole(value.name));
    }
    for (const InitialValue& value : values) {
        if (std::find(kept.begin(), kept.end(), Whole(value.name)) != kept.end()) continue;
        if (Stored(registry, value) == value.value) continue;
        bool created = false;
        const auto key = registry.RegCreateKeyEx(value.key, created);
        if (!key || !key->RegSetValueEx(value.name, value.value))
            problems.push_back(value.name + " cannot be written");
    }
    return problems;
}

}  // namespace varkel
