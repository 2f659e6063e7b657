// The main screen's cells, seams, modes and bar, as a finger meets them.
#include "ui/screens/main_screen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/call_screens.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct MainScreenTest : CallScreens {
    // What the tap on a cell, or beside one, has opened.
    std::string Opened(Point at) {
        opened.clear();
        Tap(at);
        return opened;
    }
    Navigation Noted() {
        const auto note = [this](const char* name) { return [this, name] { opened += name; }; };
        return {note("pad"), note("messages"), note("settings"), note("calls"), note("contacts")};
    }
    std::vector<int> TargetIds() {
        std::vector<int> ids;
        for (const TouchTarget& target : screen.Targets())
            ids.push_back(target.id);
        return ids;
    }
    void SetMode(ScreenMode mode) {
        dialog->State().MainScreenMode = mode;
        screen.Update();
        Settle();
    }
    ColorRef CellColor() { return display.Picture().GetPixel({310, 70}); }

    std::string opened;
    MainScreen screen{*context, Noted()};
};

TEST_F(MainScreenTest, OnlyTheCellUnderTheFingerAtBothEndsActs) {
    screen.Show();
    Settle();
    // Seams and edges belong to no cell.
    const std::pair<Point, std::string> taps[] = {
        {{100, 150}, "pad"},      {{300, 150}, "messages"}, {{500, 150}, "settings"}, {{700, 150}, "calls"},
        {{100, 370}, "contacts"}, {{1, 51}, "pad"},         {{199, 264}, "pad"},      {{200, 150}, ""},
        {{0, 150}, ""},           {{400, 150}, ""},         {{600, 370}, ""},         {{100, 265}, ""},
        {{100, 50}, ""}};
    for (const auto& [at, expected] : taps)
        EXPECT_EQ(Opened(at), expected) << at.x << ", " << at.y;

    Touch(TouchAction::Down, {300, 150});
    Touch(TouchAction::Up, {500, 150});
    EXPECT_EQ(opened, "") << "pressed on one cell, lifted on another";
    const ColorRef calm = CellColor();
    Touch(TouchAction::Down, {300, 150});
    EXPECT_NE(CellColor(), calm);
    Touch(TouchAction::Up, {700, 400});
    EXPECT_EQ(CellColor(), calm) << "the plain picture returns";
}

TEST_F(MainScreenTest, EachModeHasItsOwnLiveCells) {
    screen.Show();
    EXPECT_THAT(TargetIds(), ElementsAre(MainScreen::exitControl, 0, 1, 2, 3, 4, 5, 6, 7));
    SetMode(ScreenMode::InCall);
    EXPECT_THAT(TargetIds(), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(Opened({100, 370}), "");
    EXPECT_EQ(Opened({500, 150}), "settings");
    SetMode(ScreenMode::Closed);
    EXPECT_THAT(TargetIds(), ElementsAre(MainScreen::exitControl, 2));
    EXPECT_EQ(Opened({100, 150}), "");
    EXPECT_EQ(Opened({500, 150}), "settings");
}

TEST_F(MainScreenTest, NothingReactsWhileTheModuleStarts) {
    screen.Show();
    for (const char* const key : {"IDS_INITING", "IDS_SEARCHING"}) {
        screen.Bar().SetStatusText(language.LoadString(key));
        EXPECT_EQ(Opened({100, 150}), "");
        Tap({765, 25});
        EXPECT_EQ(windows.CountPosted("3Gwindow_HIDE 0 0"), 0);
    }
    screen.Bar().SetStatusText("");
    EXPECT_EQ(Opened({100, 150}), "pad");
    Tap({765, 25});
    EXPECT_EQ(windows.CountPosted("3Gwindow_HIDE 0 0"), 1) << "left with the module on";
}

TEST_F(MainScreenTest, TheBarTellsWhatIsAwaitedAndWhoIsOnTheLine) {
    MainScreen& main = *Find<MainScreen>();
    EXPECT_THAT(main.Bar().StatusLine(), HasSubstr("signal"));
    unit.Command("call 13800138000");
    RunFor(2000);
    dialog->Calls().Answer();
    RunFor(3000);
    EXPECT_THAT(main.Bar().StatusLine(), StartsWith("13800138000  00:0"));
    unit.Command("hangup");
    RunFor(3000);
    dialog->Calls().Dial("10002");
    RunFor(500);
    EXPECT_EQ(main.Bar().Offer(), CancelOffer::DialledCall);
    Tap({650, 55});
    RunFor(2000);
    EXPECT_EQ(main.Bar().Offer(), CancelOffer::None) << "the button gives the call up, below its picture too";
    dialog->CloseModule();
    RunFor(20'000);
    EXPECT_EQ(main.Bar().StatusLine(), "The modem is off");
    dialog->OpenModule();
    RunFor(1500);
    EXPECT_THAT(main.Bar().StatusLine(), HasSubstr("s left"));
    EXPECT_EQ(main.Bar().Offer(), CancelOffer::ModuleStart);
    display.Tap({650, 25});
    ASSERT_TRUE(RunUntilOpenEnds());
    EXPECT_EQ(dialog->State().MainScreenMode, ScreenMode::Closed);
}

}  // namespace
}  // namespace varkel::test
