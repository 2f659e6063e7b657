// Warnings and message boxes.
#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/message_box.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {
namespace {

constexpr int textId = 1065;

TEST(WarnDlg, TheModeDecidesWhichButtonsThereAreAndWhere) {
    struct Row {
        int mode;
        Rect ok;
        Rect cancel;
    };
    const Row rows[] = {
        {0, {194, 205, 60, 32}, {}},
        {1, {40, 205, 60, 32}, {200, 205, 60, 32}},
        {2, {}, {}},
        {3, {194, 205, 60, 32}, {}},
        {-1, {194, 205, 60, 32}, {}},
    };
    for (const Row& row : rows) {
        test::UiBench bench("night");
        CWarnDlg dialog(bench.desktop, WarnCode::NoSim, WarnButtonMode(row.mode));
        dialog.Show();
        EXPECT_EQ(dialog.Place(), (Rect{250, 122, 300, 237}));
        const auto shown = [&dialog](int id) {
            const auto& button = dialog.Get<CSkinButton>(id);
            EXPECT_TRUE(button.IsOwnerDrawn());
            return button.IsWindowVisible() ? button.Place().Moved(-250, -122) : Rect{};
        };
        EXPECT_EQ(shown(idOk), row.ok) << row.mode;
        EXPECT_EQ(shown(idCancel), row.cancel) << row.mode;
    }
}

TEST(WarnDlg, ClosesItselfAfterThreeSecondsAsIfOkHadBeenPressed) {
    test::UiBench bench;
    CWarnDlg dialog(bench.desktop, WarnCode::NoSim, WarnButtonMode::None, true);
    DialogResult result = DialogResult::None;
    dialog.Show([&result](DialogResult given) { result = given; });
    bench.RunFor(CWarnDlg::autoCloseTime - 10);
    EXPECT_TRUE(dialog.IsOpen());
    bench.RunFor(20);
    EXPECT_EQ(result, DialogResult::Ok);

    dialog.Show();
    dialog.ShowWindow(false);
    bench.RunFor(2 * CWarnDlg::autoCloseTime);
    EXPECT_TRUE(dialog.IsOpen());
}

TEST(WarnDlg, AsksWhetherAllIsToBeDeleted) {
    const std::pair<std::vector<Point>, DeleteChoice> rows[] = {
        {{}, DeleteChoice::ThisItem},
        {{{420, 291}}, DeleteChoice::All},
        {{{420, 291}, {270, 291}}, DeleteChoice::ThisItem},
        {{{420, 270}}, DeleteChoice::All},  // above the picture, within a finger's reach
    };
    for (const auto& [taps, choice] : rows) {
        test::UiBench bench;
        CWarnDlg dialog(bench.desktop, WarnCode::DeletePrompt, WarnButtonMode::OkCancel, false, true);
        bench.Later(10, [&] {
            for (const Point at : taps)
                bench.display.Tap(at);
            bench.display.Tap({250 + 70, 122 + 220});
        });
        EXPECT_EQ(dialog.DoModal(), DialogResult::Ok);
        EXPECT_EQ(dialog.GetDeleteChoice(), choice);
    }
}

TEST(WarnDlg, CanAlwaysBeLeft) {
    const std::tuple<WarnButtonMode, KeyCode, DialogResult> rows[] = {
        {WarnButtonMode::Ok, KeyCode::Escape, DialogResult::Ok},
        {WarnButtonMode::OkCancel, KeyCode::Escape, DialogResult::Cancel},
        {WarnButtonMode::OkCancel, KeyCode::Return, DialogResult::Ok},
        {WarnButtonMode::None, KeyCode::None, DialogResult::Cancel},  // touched
    };
    for (const auto& [mode, key, expected] : rows) {
        test::UiBench bench;
        CWarnDlg dialog(bench.desktop, WarnCode::NoSim, mode);
        bench.Later(10, [&bench, code = key] {
            code == KeyCode::None ? bench.display.Tap({400, 200}) : bench.display.Key({code, {}});
        });
        EXPECT_EQ(dialog.DoModal(), expected);
    }
}

TEST(NoticeBoxes, AThreadWaitsUntilItsBoxIsDismissedOrClosed) {
    for (const bool dismissed : {true, false}) {
        test::UiBench bench("night");
        const auto closed = bench.runtime.CreateEvent(EventReset::Manual);
        bool returned = false;
        const auto writer = bench.runtime.CreateThread({.name = "writer"}, [&] {
            bench.boxes.MessageBox("write port failed!", "", closed.get());
            returned = true;
        });
        bench.RunFor(300);
        ASSERT_EQ(bench.desktop.Stack().size(), 1u);
        EXPECT_FALSE(returned);
        if (dismissed) {
            bench.Tap(Point{400, 330});
        } else {
            closed->Set();
        }
        bench.RunFor(200);
        EXPECT_TRUE(returned);
        EXPECT_TRUE(bench.desktop.Stack().empty());
        writer->Wait(infiniteTicks);
    }
}

TEST(NoticeBoxes, OneBoxATextAndNoMoreThanTheScreenHolds) {
    test::UiBench bench;
    for (int i = 0; i < 100; ++i) {
        bench.boxes.ShowMessageBox("load failed", "");
        bench.boxes.ShowMessageBox(std::to_string(i), "");
    }
    bench.Settle();
    EXPECT_EQ(bench.desktop.Stack().size(), NoticeBoxes::mostBoxes);
    for (std::size_t i = 0; i < NoticeBoxes::mostBoxes; ++i)
        bench.Key(KeyCode::Return);
    EXPECT_TRUE(bench.desktop.Stack().empty());
    bench.boxes.ShowMessageBox("load failed", "");
    bench.Settle();
    EXPECT_EQ(bench.desktop.Stack().size(), 1u);
}

TEST(NoticeBoxes, OnTheDialogThreadABoxIsModalAndTheLoopGoesOn) {
    test::UiBench bench;
    bool ticked = false;
    bench.Later(20, [&] { ticked = true; });
    bench.Later(50, [&] { bench.display.Key({KeyCode::Escape, {}}); });
    bench.boxes.MessageBox("open port faild", "", nullptr);
    EXPECT_TRUE(ticked);
}

}  // namespace
}  // namespace varkel
