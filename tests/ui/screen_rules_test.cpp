// The rules that every screen keeps, in both skins and all languages: what a finger can touch, what can be
// read, and that there is a way back.
#include <gmock/gmock.h>

#include "tests/support/dialog_survey.h"
#include "tests/ui/gallery.h"

namespace varkel::test {
namespace {

struct ScreenRules : testing::TestWithParam<Look> {
    // The main screen is what all others lead back to, and its button leaves it to that.
    bool HasLeft(Dialog& screen) {
        if (dynamic_cast<MainScreen*>(&screen) || dynamic_cast<CancelButton*>(&screen)) return true;
        if (dynamic_cast<CCallInDlg*>(&screen)) return gallery.dialog->Calls().CallerNumber().empty();
        return !screen.IsOpen();
    }

    Gallery gallery{std::get<0>(GetParam()), std::string(std::get<1>(GetParam()))};
};

TEST_P(ScreenRules, HoldOnEveryScreen) {
    const std::vector<std::string> exitInTheBar{"target 1075 is too small"};
    for (const Exhibit& exhibit : exhibits) {
        SCOPED_TRACE(exhibit.name);
        auto screen = exhibit.open(gallery);
        for (Dialog* const dialog : gallery.desktop.Stack()) {
            const bool lowExit = dynamic_cast<MainScreen*>(dialog) &&
                                 gallery.dialog->State().MainScreenMode != ScreenMode::InCall;
            EXPECT_EQ(FaultsOf(*dialog), lowExit ? exitInTheBar : std::vector<std::string>{});
        }
        // A question whether to leave is answered with yes, and a tip goes when it is touched.
        gallery.Play(
            {gallery.Press(KeyCode::Escape), gallery.Press(KeyCode::Return), gallery.Tap({400, 240})});
        EXPECT_TRUE(HasLeft(*screen)) << "no way back";
        screen.reset();
        gallery.below.reset();
    }
}

INSTANTIATE_TEST_SUITE_P(SkinsAndLanguages, ScreenRules, AllLooks(), NameOfLook);

}  // namespace
}  // namespace varkel::test
