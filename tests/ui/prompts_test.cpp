// Warnings and message boxes.
#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel::test {
namespace {

struct Prompts : testing::Test, UiBench {
    Prompts() : UiBench("night") {}
};

TEST_F(Prompts, TheModeDecidesWhichButtonsAWarningHasAndWhere) {
    struct Case {
        int mode;
        Rect ok;
        Rect cancel;
    };
    const Case cases[] = {
        {0, {194, 205, 60, 32}, {}},
        {1, {40, 205, 60, 32}, {200, 205, 60, 32}},
        {2, {}, {}},
        {3, {194, 205, 60, 32}, {}},
        {-1, {194, 205, 60, 32}, {}},
    };
    for (const Case& test : cases) {
        CWarnDlg dialog(desktop, WarnCode::NoSim, WarnButtonMode(test.mode));
        dialog.Show();
        EXPECT_EQ(dialog.Place(), (Rect{250, 122, 300, 237}));
        const auto shown = [&dialog](int id) {
            const auto& button = dialog.Get<CSkinButton>(id);
            EXPECT_TRUE(button.IsOwnerDrawn());
            return button.IsWindowVisible() ? button.Place().Moved(-250, -122) : Rect{};
        };
        EXPECT_EQ(shown(idOk), test.ok) << test.mode;
        EXPECT_EQ(shown(idCancel), test.cancel) << test.mode;
    }
}

TEST_F(Prompts, AWarningClosesItselfAfterThreeSecondsAsIfOkHadBeenPressed) {
    CWarnDlg dialog(desktop, WarnCode::NoSim, WarnButtonMode::None, true);
    DialogResult result = DialogResult::None;
    dialog.Show([&result](DialogResult given) { result = given; });
    RunFor(CWarnDlg::autoCloseTime - 10);
    EXPECT_TRUE(dialog.IsOpen());
    RunFor(20);
    EXPECT_EQ(result, DialogResult::Ok);

    dialog.Show();
    dialog.ShowWindow(false);
    RunFor(2 * CWarnDlg::autoCloseTime);
    EXPECT_TRUE(dialog.IsOpen());
}

TEST_F(Prompts, AWarningAsksWhetherAllIsToBeDeleted) {
    const std::pair<std::vector<Point>, DeleteChoice> rows[] = {
        {{}, DeleteChoice::ThisItem},
        {{{420, 291}}, DeleteChoice::All},
        {{{420, 291}, {270, 291}}, DeleteChoice::ThisItem},
        {{{420, 270}}, DeleteChoice::All},  // above the picture, within a finger's reach
    };
    for (const auto& [taps, choice] : rows) {
        CWarnDlg dialog(desktop, WarnCode::DeletePrompt, WarnButtonMode::OkCancel, false, true);
        Later(10, [&, points = taps] {
            for (const Point at : points)
                display.Tap(at);
            display.Tap({250 + 70, 122 + 220});
        });
        EXPECT_EQ(dialog.DoModal(), DialogResult::Ok);
        EXPECT_EQ(dialog.GetDeleteChoice(), choice);
    }
}

TEST_F(Prompts, AWarningCanAlwaysBeLeft) {
    const std::tuple<WarnButtonMode, KeyCode, DialogResult> rows[] = {
        {WarnButtonMode::Ok, KeyCode::Escape, DialogResult::Ok},
        {WarnButtonMode::OkCancel, KeyCode::Escape, DialogResult::Cancel},
        {WarnButtonMode::OkCancel, KeyCode::Return, DialogResult::Ok},
        {WarnButtonMode::None, KeyCode::None, DialogResult::Cancel},  // touched
    };
    for (const auto& [mode, key, expected] : rows) {
        CWarnDlg dialog(desktop, WarnCode::NoSim, mode);
        Later(10, [this, code = key] {
            code == KeyCode::None ? display.Tap({400, 200}) : display.Key({code, {}});
        });
        EXPECT_EQ(dialog.DoModal(), expected);
    }
}

TEST_F(Prompts, AThreadWaitsUntilItsBoxIsDismissedOrClosed) {
    for (const bool dismissed : {true, false}) {
        const auto closed = runtime.CreateEvent(EventReset::Manual);
        const auto writer = runtime.CreateThread(
            {.name = "writer"}, [&] { boxes.MessageBox("write port failed!", "", closed.get()); });
        RunFor(300);
        EXPECT_EQ(desktop.Stack().size(), 1u);
        EXPECT_EQ(writer->Wait(0), WaitResult::Timeout);
        if (dismissed) {
            Tap(Point{400, 330});
        } else {
            closed->Set();
        }
        RunFor(200);
        EXPECT_EQ(writer->Wait(0), WaitResult::Object0);
        EXPECT_TRUE(desktop.Stack().empty());
    }
}

TEST_F(Prompts, OneBoxATextAndNoMoreThanTheScreenHolds) {
    for (int i = 0; i < 100; ++i) {
        boxes.ShowMessageBox("load failed", "");
        boxes.ShowMessageBox(std::to_string(i), "");
    }
    Settle();
    EXPECT_EQ(desktop.Stack().size(), NoticeBoxes::mostBoxes);
    for (std::size_t i = 0; i < NoticeBoxes::mostBoxes; ++i)
        Key(KeyCode::Return);
    EXPECT_TRUE(desktop.Stack().empty());
    boxes.ShowMessageBox("load failed", "");
    Settle();
    EXPECT_EQ(desktop.Stack().size(), 1u);
}

TEST_F(Prompts, OnTheDialogThreadABoxIsModalAndTheLoopGoesOn) {
    bool ticked = false;
    Later(20, [&] { ticked = true; });
    Later(50, [this] { display.Key({KeyCode::Escape, {}}); });
    boxes.MessageBox("open port faild", "", nullptr);
    EXPECT_TRUE(ticked);
}

}  // namespace
}  // namespace varkel::test
