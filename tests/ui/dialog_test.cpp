// Touches, keys, timers and the stack of dialogs.
#include "ui/toolkit/dialog.h"

#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/skin_button.h"

namespace varkel {
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
    void OnInitDialog() override {
        ++opened;
        text = LoadText("IDS_NO_SIM");
    }
    void OnDestroy() override { ++destroyed; }
    void OnTouch(const TouchEvent& event) override {
        if (event.action == TouchAction::Up) clicks += ".";
    }
    using Dialog::KillTimer;
    using Dialog::SetTimer;

    std::string clicks;
    std::string text;
    int opened = 0;
    int destroyed = 0;
    std::function<void()> onLeft;
};

TEST(Dialog, AFingerClicksWhatItPressesAndIsLiftedOn) {
    struct Row {
        std::vector<TouchEvent> touches;
        std::string clicks;
    };
    constexpr auto down = TouchAction::Down, move = TouchAction::Move, up = TouchAction::Up;
    constexpr Point on{150, 240}, off{400, 400}, beside{570, 270}, onSmall{610, 310};
    const Row rows[] = {
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
    for (const Row& row : rows) {
        test::UiBench bench;
        TestDialog dialog(bench.desktop);
        dialog.Show();
        for (const TouchEvent& touch : row.touches)
            bench.display.Touch(touch.action, touch.at);
        bench.Settle();
        EXPECT_EQ(dialog.clicks, row.clicks) << &row - rows;
    }
}

TEST(Dialog, AModalDialogTakesTheInputAndTheOneBelowGoesOnPaintingAndCounting) {
    test::UiBench bench;
    TestDialog below(bench.desktop);
    TestDialog above(bench.desktop);
    int ticks = 0;
    below.Show();
    below.SetTimer(1, 100, [&ticks] { ++ticks; });
    above.SetTimer(1, 1000, [&above] { above.EndDialog(DialogResult::Ok); });  // same id, another dialog
    DialogResult result = DialogResult::None;
    below.onLeft = [&] { result = above.DoModal(); };

    bench.Later(450, [&] {
        EXPECT_EQ(bench.desktop.Active(), &above);
        bench.display.Tap({150, 240});
        bench.display.Key({KeyCode::Escape, {}});
    });
    bench.Tap(leftPlace);
    EXPECT_EQ(result, DialogResult::Cancel);
    EXPECT_EQ(above.clicks, "l");
    EXPECT_EQ(below.clicks, "l");
    EXPECT_EQ(ticks, 4);
    EXPECT_EQ(above.destroyed, 1);
    EXPECT_EQ(below.destroyed, 0);
}

TEST(Dialog, ABoxThatOpensTakesThePressedButtonFromTheFinger) {
    test::UiBench bench;
    TestDialog below(bench.desktop);
    TestDialog box(bench.desktop);
    below.Show();
    bench.Down({150, 240});
    box.Show();
    bench.Up({150, 240});
    EXPECT_EQ(below.clicks + box.clicks, "");
    bench.Tap(leftPlace);
    EXPECT_EQ(box.clicks, "l");
}

TEST(Dialog, ATipTakesOnlyWhatTouchesIt) {
    test::UiBench bench;
    TestDialog below(bench.desktop);
    below.Show();
    CPromptDlg tip(bench.desktop);
    tip.ShowTip("sending");
    EXPECT_EQ(bench.windows.FindWindow("MsgTipDlg"), tip.Window());
    bench.Tap(leftPlace);
    EXPECT_EQ(below.clicks, "l");
    EXPECT_TRUE(tip.IsOpen());
    bench.Key(KeyCode::Escape);
    EXPECT_FALSE(below.IsOpen());
    bench.Tap(Point{400, 240});
    EXPECT_FALSE(tip.IsOpen());
    EXPECT_EQ(bench.windows.FindWindow("MsgTipDlg"), WindowHandle::None);
}

TEST(Dialog, ADisabledDialogAndAHiddenOneTakeNothing) {
    test::UiBench bench;
    TestDialog dialog(bench.desktop);
    EXPECT_FALSE(bench.display.IsShown());
    dialog.Show();
    EXPECT_TRUE(bench.display.IsShown());
    dialog.EnableWindow(false);
    bench.Tap(leftPlace);
    bench.Key(KeyCode::Escape);
    EXPECT_EQ(dialog.clicks, "");
    EXPECT_TRUE(dialog.IsOpen());
    dialog.EnableWindow(true);
    dialog.ShowWindow(false);
    EXPECT_FALSE(bench.display.IsShown());
    bench.Tap(leftPlace);
    EXPECT_EQ(dialog.clicks, "");
    dialog.ShowWindow(true);
    bench.Tap(leftPlace);
    EXPECT_EQ(dialog.clicks, "l");
}

TEST(Dialog, ACallStandsAboveWhatOpensLater) {
    test::UiBench bench;
    constexpr DialogSpec callSpec{.buttons = buttons, .layer = DialogLayer::AboveAll};
    TestDialog call(bench.desktop, callSpec);
    TestDialog screen(bench.desktop);
    call.Show();
    screen.Show();
    EXPECT_EQ(bench.desktop.Active(), &call);
    call.EndDialog(DialogResult::Ok);
    EXPECT_EQ(bench.desktop.Active(), &screen);
}

TEST(Dialog, EndingTheLowerOfTwoModalDialogsKeepsItsControlsUntilItsHandlerIsThrough) {
    test::UiBench bench;
    TestDialog below(bench.desktop);
    TestDialog above(bench.desktop);
    bool closed = false;
    below.Show([&closed](DialogResult) { closed = true; });
    below.onLeft = [&] {
        EXPECT_EQ(above.DoModal(), DialogResult::Ok);
        EXPECT_EQ(below.Get<CSkinButton>(left).Id(), left);
        EXPECT_FALSE(closed);
    };
    bench.Later(100, [&] { below.EndDialog(DialogResult::Cancel); });
    bench.Later(200, [&] { bench.display.Key({KeyCode::Return, {}}); });
    bench.Tap(leftPlace);
    bench.Settle();
    EXPECT_TRUE(closed);
    EXPECT_EQ(below.destroyed, 1);
}

TEST(Dialog, QuitEndsAllModalDialogs) {
    test::UiBench bench;
    TestDialog below(bench.desktop);
    TestDialog above(bench.desktop);
    DialogResult result = DialogResult::None;
    below.onLeft = [&] { result = above.DoModal(); };
    bench.Later(100, [&] { bench.display.Tap({150, 240}); });
    bench.Later(200, [&] { bench.loop.Quit(); });
    EXPECT_EQ(below.DoModal(), DialogResult::Cancel);
    EXPECT_EQ(result, DialogResult::Cancel);
    EXPECT_TRUE(bench.desktop.Stack().empty());
}

TEST(Dialog, OpensAgainWithTheTextsOfThatMoment) {
    test::UiBench bench;
    TestDialog dialog(bench.desktop);
    for (int i = 1; i <= 2; ++i) {
        bench.Later(10, [&] { dialog.EndDialog(DialogResult::Ok); });
        EXPECT_EQ(dialog.DoModal(), DialogResult::Ok);
        EXPECT_EQ(dialog.opened, i);
        EXPECT_EQ(dialog.destroyed, i);
    }
    EXPECT_EQ(dialog.text, "No SIM card");
}

TEST(Dialog, ACurtainOpensAndClosesInATenthOfASecondWhereTheUnitWantsIt) {
    for (const bool on : {true, false}) {
        test::UiBench bench;
        bench.SetAnimation(on);
        TestDialog dialog(bench.desktop, animated);
        bool closed = false;
        dialog.Show([&closed](DialogResult) { closed = true; });
        bench.RunFor(Curtain::duration - 5);
        bench.Tap(leftPlace);
        EXPECT_EQ(dialog.clicks, on ? "" : "l");
        bench.RunFor(10);
        bench.Tap(leftPlace);
        EXPECT_EQ(dialog.clicks, on ? "l" : "ll");
        dialog.EndDialog(DialogResult::Ok);
        bench.RunFor(Curtain::duration - 5);
        EXPECT_EQ(closed, !on);
        bench.Tap(leftPlace);
        bench.RunFor(10);
        EXPECT_TRUE(closed);
        EXPECT_EQ(dialog.clicks, on ? "l" : "ll");
    }
}

TEST(Dialog, TheCurtainIsThePictureThatWasThereBefore) {
    test::UiBench bench;
    bench.PutPicture("old", 'r', 800);
    bench.PutPicture("new", 'g', 800);
    constexpr DialogSpec oldSpec{.directory = "\\ResidentFlash2\\test\\", .background = "old"};
    constexpr DialogSpec newSpec{
        .directory = "\\ResidentFlash2\\test\\", .background = "new", .animated = true};
    Dialog before(bench.desktop, oldSpec);
    Dialog after(bench.desktop, newSpec);
    before.Show();
    bench.Settle();
    after.Show();
    const auto row = [&bench] {
        std::string letters;
        for (const int x : {0, 300, 399, 400, 500, 799})
            letters += test::LetterOf(bench.display.Picture().GetPixel({x, 240}));
        return letters;
    };
    bench.RunFor(2);
    EXPECT_EQ(row(), "rrrrrr");
    bench.RunFor(30);  // three steps of 40 pixels
    EXPECT_EQ(row(), "rggggr");
    bench.RunFor(80);
    EXPECT_EQ(row(), "gggggg");
}

}  // namespace
}  // namespace varkel
