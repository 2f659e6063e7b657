#include "platform/linux/skin.h"

#include <gtest/gtest.h>

#include "tests/support/memory_registry.h"

namespace varkel {
namespace {

constexpr std::string_view night =
    "[CharacterAttr]\nEditRed = dword:1\nEditGreen = dword:2\nEditBlue = dword:3\nSubTitleSize = dword:32\n";
constexpr std::string_view day =
    "[CharacterAttr]\nEditRed = dword:4\nEditGreen = dword:2\nEditBlue = dword:6\nSubTitleSize = dword:32\n";

RegistryValue Dword(unsigned char value) {
    return {RegistryType::Dword, {std::byte{value}, {}, {}, {}}};
}

TEST(SkinChoiceTest, AutoIsDayFromSevenToNineteen) {
    const struct {
        PaletteChoice choice;
        int hour;
        const char* shown;
        const char* other;
    } cases[] = {
        {PaletteChoice::Night, 12, "/a/skin-night", "/a/skin-day"},
        {PaletteChoice::Day, 0, "/a/skin-day", "/a/skin-night"},
        {PaletteChoice::Auto, 6, "/a/skin-night", "/a/skin-day"},
        {PaletteChoice::Auto, 7, "/a/skin-day", "/a/skin-night"},
        {PaletteChoice::Auto, 18, "/a/skin-day", "/a/skin-night"},
        {PaletteChoice::Auto, 19, "/a/skin-night", "/a/skin-day"},
    };
    for (const auto& [choice, hour, shown, other] : cases) {
        EXPECT_EQ(ChooseSkin("/a", choice, hour).directory, shown) << hour;
        EXPECT_EQ(ChooseSkin("/a", choice, hour).other, other) << hour;
    }
}

TEST(SkinChoiceTest, TheRegistryFollowsTheSkinButKeepsWhatWasSetByHand) {
    test::MemoryRegistry registry;
    const auto edit = [&registry] {
        std::vector<RegistryValue> parts;
        for (const char* const name : {"EditRed", "EditGreen", "EditBlue"})
            parts.push_back(registry.Value("CharacterAttr", name).value_or(RegistryValue{}));
        return parts;
    };
    EXPECT_TRUE(FollowSkin(registry, night, day).empty());
    EXPECT_EQ(edit(), (std::vector{Dword(1), Dword(2), Dword(3)})) << "missing";
    EXPECT_TRUE(FollowSkin(registry, day, night).empty());
    EXPECT_EQ(edit(), (std::vector{Dword(4), Dword(2), Dword(6)})) << "as the other skin has it";

    registry.SetValue("CharacterAttr", "EditBlue", Dword(9));
    registry.SetValue("CharacterAttr", "SubTitleSize", Dword(40));
    EXPECT_TRUE(FollowSkin(registry, night, day).empty());
    EXPECT_EQ(edit(), (std::vector{Dword(4), Dword(2), Dword(9)})) << "a colour of one's own is never mixed";
    EXPECT_EQ(registry.Value("CharacterAttr", "SubTitleSize"), Dword(40));

    registry.refuseWrites = true;
    registry.SetValue("CharacterAttr", "EditBlue", Dword(6));
    EXPECT_EQ(FollowSkin(registry, night, day).size(), 2u);
}

}  // namespace
}  // namespace varkel
