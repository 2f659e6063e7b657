// Touches, keys, timers and the stack of dialogs.
#include "ui/toolkit/dialog.h"

#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/skin_button.h"

namespace varkel::test {
namespace {

constexpr int left = 5;
constexpr int small = 6;
constexpr Rect leftPlace{100, 200, 200, 80};
constexpr Rect smallPlace{600, 300, 30, 20};
constexpr ButtonSpec buttons[] = {{.id = left, .rect = leftPlace},
                                  {.id = small, .rect = smallPlace},
                                  {.id = idOk, .rect = {400, 20, 100, 80}},
                                  {.id = idCancel, .rect = {600, 20, 100, 80}}};
constexpr DialogSpec spec{.buttons = buttons};
constexpr DialogSpec animated{.buttons = buttons, .animated = true};

// Writes down what happens to it.
struct TestDialog : Dialog {
    explicit TestDialog(Desktop& desktop, const DialogSpec& dialogSpec = spec) : Dialog(desktop, dialogSpec) {
        OnClick(left, [this] {
            clicks += "l";
            if (onLeft) onLeft();
        });
        OnClick(small, [this] { clicks += "s"; });
    }
    void OnDestroy() override { ++destroyed; }
    void OnTouch(const TouchEvent& event) override {
        if (event.action == TouchAction::Up) clicks += ".";
    }
    using Dialog::KillTimer;
    using Dialog::SetTimer;

    std::string clicks;
    int destroyed = 0;
    std::function<void()> onLeft;
};

struct DialogTest : testing::Test, UiBench {
    TestDialog below{desktop};
    TestDialog above{desktop};
};

TEST_F(DialogTest, AFingerClicksWhatItPressesAndIsLiftedOn) {
    struct Case {
        std::vector<TouchEvent> touches;
        std::string clicks;
    };
    constexpr auto down = TouchAction::Down, move = TouchAction::Move, up = TouchAction::Up;
    constexpr Point on{150, 240}, off{400, 400}, beside{570, 270}, onSmall{610, 310};
    const Case cases[] = {
        {{{down, on}, {up, on}}, "l"},
        {{{down, on}, {move, off}, {up, off}}, ""},
        {{{down, on}, {move, off}, {move, on}, {up, on}}, "l"},
        {{{down, off}, {move, on}, {up, on}}, "."},      // pressed elsewhere
        {{{down, on}, {up, onSmall}}, ""},               // lifted on another one
        {{{down, {585, 280}}, {up, {585, 280}}}, "s"},   // beside the picture, within its reach
        {{{down, beside}, {up, beside}}, "."},           // out of it
        {{{down, on}, {down, onSmall}, {up, on}}, "l"},  // a second finger
        {{{up, on}, {move, on}, {down, onSmall}, {up, onSmall}}, "s"},
    };
    below.Show();
    for (const Case& test : cases) {
        for (const TouchEvent& touch : test.touches)
            display.Touch(touch.action, touch.at);
        Settle();
        EXPECT_EQ(std::exchange(below.clicks, ""), test.clicks) << &test - cases;
    }
}

TEST_F(DialogTest, AModalDialogTakesTheInputAndTheOneBelowGoesOnPaintingAndCounting) {
    int ticks = 0;
    below.Show();
    below.SetTimer(1, 100, [&ticks] { ++ticks; });
    above.SetTimer(1, 1000, [this] { above.EndDialog(DialogResult::Ok); });  // same id, another dialog
    DialogResult result = DialogResult::None;
    below.onLeft = [&] { result = above.DoModal(); };

    Later(450, [&] {
        EXPECT_EQ(desktop.Active(), &above);
        display.Tap({150, 240});
        display.Key({KeyCode::Escape, {}});
    });
    Tap(leftPlace);
    EXPECT_EQ(result, DialogResult::Cancel);
    EXPECT_EQ(above.clicks, "l");
    EXPECT_EQ(below.clicks, "l");
    EXPECT_EQ(ticks, 4);
    EXPECT_EQ(above.destroyed, 1);
    EXPECT_EQ(below.destroyed, 0);
}

TEST_F(DialogTest, ABoxThatOpensTakesThePressedButtonFromTheFinger) {
    below.Show();
    Down({150, 240});
    above.Show();
    Up({150, 240});
    EXPECT_EQ(below.clicks + above.clicks, "");
    Tap(leftPlace);
    EXPECT_EQ(above.clicks, "l");
}

TEST_F(DialogTest, ATipTakesOnlyWhatTouchesIt) {
    below.Show();
    CPromptDlg tip(desktop);
    tip.ShowTip("sending");
    EXPECT_EQ(windows.FindWindow("MsgTipDlg"), tip.Window());
    Tap(leftPlace);
    EXPECT_EQ(below.clicks, "l");
    EXPECT_TRUE(tip.IsOpen());
    Key(KeyCode::Escape);
    EXPECT_FALSE(below.IsOpen());
    Tap(Point{400, 240});
    EXPECT_FALSE(tip.IsOpen());
    EXPECT_EQ(windows.FindWindow("MsgTipDlg"), WindowHandle::None);
}

TEST_F(DialogTest, ADisabledDialogAndAHiddenOneTakeNothing) {
    EXPECT_FALSE(display.IsShown());
    below.Show();
    EXPECT_TRUE(display.IsShown());
    below.EnableWindow(false);
    Tap(leftPlace);
    Key(KeyCode::Escape);
    EXPECT_TRUE(below.IsOpen());
    below.EnableWindow(true);
    below.ShowWindow(false);
    EXPECT_FALSE(display.IsShown());
    Tap(leftPlace);
    EXPECT_EQ(below.clicks, "");
    below.ShowWindow(true);
    Tap(leftPlace);
    EXPECT_EQ(below.clicks, "l");
}

TEST_F(DialogTest, ACallStandsAboveWhatOpensLater) {
    constexpr DialogSpec callSpec{.buttons = buttons, .layer = DialogLayer::AboveAll};
    TestDialog call(desktop, callSpec);
    call.Show();
    below.Show();
    EXPECT_EQ(desktop.Active(), &call);
    call.EndDialog(DialogResult::Ok);
    EXPECT_EQ(desktop.Active(), &below);
}

TEST_F(DialogTest, EndingTheLowerOfTwoModalDialogsKeepsItsControlsUntilItsHandlerIsThrough) {
    bool closed = false;
    below.Show([&closed](DialogResult) { closed = true; });
    below.onLeft = [&] {
        EXPECT_EQ(above.DoModal(), DialogResult::Ok);
        EXPECT_EQ(below.Get<CSkinButton>(left).Id(), left);
        EXPECT_FALSE(closed);
    };
    Later(100, [&] { below.EndDialog(DialogResult::Cancel); });
    Later(200, [&] { display.Key({KeyCode::Return, {}}); });
    Tap(leftPlace);
    Settle();
    EXPECT_TRUE(closed);
    EXPECT_EQ(below.destroyed, 1);
}

TEST_F(DialogTest, QuitEndsAllModalDialogs) {
    DialogResult result = DialogResult::None;
    below.onLeft = [&] { result = above.DoModal(); };
    Later(100, [&] { display.Tap({150, 240}); });
    Later(200, [&] { loop.Quit(); });
    EXPECT_EQ(below.DoModal(), DialogResult::Cancel);
    EXPECT_EQ(result, DialogResult::Cancel);
    EXPECT_TRUE(desktop.Stack().empty());
}

TEST_F(DialogTest, ACurtainOpensAndClosesInATenthOfASecondWhereTheUnitWantsIt) {
    for (const bool on : {true, false}) {
        SetAnimation(on);
        TestDialog dialog(desktop, animated);
        bool closed = false;
        dialog.Show([&closed](DialogResult) { closed = true; });
        RunFor(Curtain::duration - 5);
        Tap(leftPlace);
        EXPECT_EQ(dialog.clicks, on ? "" : "l");
        RunFor(10);
        Tap(leftPlace);
        EXPECT_EQ(dialog.clicks, on ? "l" : "ll");
        dialog.EndDialog(DialogResult::Ok);
        RunFor(Curtain::duration - 5);
        EXPECT_EQ(closed, !on);
        Tap(leftPlace);
        RunFor(10);
        EXPECT_TRUE(closed);
        EXPECT_EQ(dialog.clicks, on ? "l" : "ll");
    }
}

TEST_F(DialogTest, TheCurtainIsThePictureThatWasThereBefore) {
    PutPicture("old", 'r', 800);
    PutPicture("new", 'g', 800);
    constexpr std::string_view directory = "\\ResidentFlash2\\test\\";
    constexpr DialogSpec oldSpec{.directory = directory, .background = "old"};
    constexpr DialogSpec newSpec{.directory = directory, .background = "new", .animated = true};
    Dialog before(desktop, oldSpec);
    Dialog after(desktop, newSpec);
    before.Show();
    Settle();
    after.Show();
    const std::pair<Ticks, const char*> looks[] = {
        {2, "rrrrrr"}, {30, "rggggr"}, {80, "gggggg"}};  // at 32 ms three steps of 40 pixels
    for (const auto& [time, letters] : looks) {
        RunFor(time);
        std::string row;
        for (const int x : {0, 300, 399, 400, 500, 799})
            row += LetterOf(display.Picture().GetPixel({x, 240}));
        EXPECT_EQ(row, letters);
    }
}

}  // namespace
}  // namespace varkel::test
