// Scroll bars, lists and radio groups.
#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/check_box.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_scroll_bar.h"

namespace varkel {
namespace {

constexpr int listId = 1;
constexpr int barPlace = 2;
constexpr int radioId = 3;
constexpr int checkId = 4;
constexpr Rect listRect{8, 130, 540, 344};
constexpr Rect barRect{552, 130, 48, 344};
constexpr ListSpec lists[] = {{listId, listRect, 86}};
constexpr PlaceSpec places[] = {{barPlace, barRect}};
constexpr std::string_view captions[] = {"one", "two", "three"};
constexpr RadioSpec radios[] = {
    {.id = radioId, .rect = {8, 58, 600, 66}, .item = {200, 66}, .captions = captions}};
constexpr CheckSpec checks[] = {{.id = checkId, .rect = {610, 400, 150, 44}}};
constexpr DialogSpec spec{.lists = lists, .radios = radios, .checks = checks, .places = places};

struct ListDialog : Dialog {
    explicit ListDialog(Desktop& desktop, unsigned barStyle = SBS_VERT)
        : Dialog(desktop, spec), style(barStyle) {
        OnClick(radioId, [this] { told += "r" + std::to_string(Get<RadioGroup>(radioId).Selected()) + " "; });
        OnClick(checkId, [this] { told += Get<CheckBox>(checkId).IsChecked() ? "on " : "off "; });
    }
    void OnInitDialog() override {
        auto& list = Get<ListBox>(listId);
        list.SetModel(
            {[this] { return rows; }, [](int row) { return ListRow{.text = std::to_string(row)}; }});
        list.onTap = [this](int row) { told += "t" + std::to_string(row) + " "; };
        AddControl<CSkinScrollBar>(style, barPlace).SetScrollRange(0, 100);
    }
    void OnVScroll(ScrollCode code, int position, CSkinScrollBar&) override {
        told += std::to_string(static_cast<int>(code)) + ":" + std::to_string(position) + " ";
    }
    std::string Told() { return std::exchange(told, ""); }

    unsigned style;
    int rows = 40;
    std::string told;
};

struct ListBench : test::UiBench {
    ListBench() : UiBench("night"), dialog(desktop) {
        dialog.Show();
        Settle();
    }
    ListBox& List() { return dialog.Get<ListBox>(listId); }
    CSkinScrollBar& Bar() { return dialog.Get<CSkinScrollBar>(barPlace); }
    ListDialog dialog;
};

constexpr Point upArrow{570, 140};
constexpr Point downArrow{570, 465};

TEST(SkinScrollBar, AnArrowStepsWhenItIsReleasedAndWhileItIsHeld) {
    ListBench bench;
    bench.Tap(downArrow);
    EXPECT_EQ(bench.dialog.Told(), "1:0 ");
    bench.Tap(Point{barRect.Right() + 5, downArrow.y});  // a finger is wider than the bar
    EXPECT_EQ(bench.dialog.Told(), "1:0 ");
    bench.Down(upArrow);
    bench.RunFor(195);  // 150 ms until the repeat begins, 50 ms a step
    EXPECT_EQ(bench.dialog.Told(), "");
    bench.RunFor(100);
    EXPECT_EQ(bench.dialog.Told(), "0:0 0:0 ");
    bench.Up(upArrow);
    EXPECT_EQ(bench.dialog.Told(), "0:0 ");
    bench.RunFor(1000);
    EXPECT_EQ(bench.dialog.Told(), "");
    bench.Down(upArrow);
    bench.RunFor(160);
    bench.Up({300, 300});
    bench.RunFor(1000);
    EXPECT_EQ(bench.dialog.Told(), "");
}

TEST(SkinScrollBar, TheThumbFollowsTheFingerAndJumpsToTheTouchedPoint) {
    ListBench bench;
    bench.Down({575, 302});  // the middle of the channel
    EXPECT_EQ(bench.dialog.Told(), "5:50 ");
    bench.Move({575, 0});
    EXPECT_EQ(bench.dialog.Told(), "5:0 ");
    bench.Move({575, 479});
    bench.Up({300, 479});
    EXPECT_EQ(bench.dialog.Told(), "5:100 ");
    EXPECT_EQ(bench.Bar().GetScrollPos(), 100);
    // Without anything to scroll nothing moves.
    bench.Bar().SetScrollRange(0, 0);
    bench.Tap(Point{575, 302});
    EXPECT_EQ(bench.dialog.Told(), "");
}

TEST(SkinScrollBar, OnlyVerticalOnesExist) {
    test::UiBench bench("night");
    ListDialog dialog(bench.desktop, 0);
    dialog.Show();
    bench.Settle();
    // The box is there already, so that a second one of its text is not shown.
    bench.boxes.ShowMessageBox("Don't surport horizontal scrollbar", "");
    bench.Settle();
    EXPECT_EQ(bench.desktop.Stack().size(), 2u);
    bench.Key(KeyCode::Return);
    EXPECT_EQ(bench.desktop.Stack().size(), 1u);
    bench.Tap(downArrow);
    EXPECT_EQ(dialog.Told(), "");
}

TEST(ListBox, ATapSelectsADragScrolls) {
    ListBench bench;
    bench.Tap(Point{100, 130 + 86 + 10});
    EXPECT_EQ(bench.dialog.Told(), "t1 ");
    EXPECT_EQ(bench.List().SelectedRow(), 1);
    bench.Down({100, 400});
    bench.Move({100, 395});  // trembles
    bench.Up({100, 395});
    EXPECT_EQ(bench.dialog.Told(), "t3 ");
    bench.Down({100, 400});
    bench.Move({100, 400 - 3 * 86});
    bench.Up({100, 400 - 3 * 86});
    EXPECT_EQ(bench.dialog.Told(), "");
    EXPECT_EQ(bench.List().TopRow(), 3);
    EXPECT_EQ(bench.List().SelectedRow(), 3);
    bench.Tap(Point{100, 135});
    EXPECT_EQ(bench.dialog.Told(), "t3 ");
}

TEST(ListBox, StaysWithinItsRowsWhateverBecomesOfThem) {
    ListBench bench;
    ListBox& list = bench.List();
    int moved = 0;
    list.onScroll = [&moved] { ++moved; };
    list.SetTopRow(1000);
    EXPECT_EQ(list.TopRow(), 36);
    EXPECT_EQ(moved, 1);
    list.PageUp();
    EXPECT_EQ(list.TopRow(), 32);
    list.SelectRow(1000);
    EXPECT_EQ(list.SelectedRow(), 39);
    EXPECT_EQ(list.TopRow(), 36);
    bench.dialog.rows = 2;
    list.Reload();
    EXPECT_EQ(list.SelectedRow(), 1);
    EXPECT_EQ(list.TopRow(), 0);
    bench.Tap(Point{100, 400});  // below the last row
    EXPECT_EQ(bench.dialog.Told(), "");
    bench.dialog.rows = 0;
    list.Reload();
    EXPECT_EQ(list.SelectedRow(), -1);
    list.SelectRow(3);
    bench.dialog.SetFocus(&list);
    for (const KeyCode key : {KeyCode::Down, KeyCode::PageDown, KeyCode::End, KeyCode::Up})
        bench.Key(key);
    EXPECT_EQ(list.SelectedRow(), -1);
}

TEST(RadioGroup, AnotherItemIsChosenTheChosenOneDoesNothing) {
    ListBench bench;
    bench.Tap(Point{250, 80});
    EXPECT_EQ(bench.dialog.Told(), "r1 ");
    bench.Tap(Point{250, 80});
    EXPECT_EQ(bench.dialog.Told(), "");
    bench.Down({450, 80});
    bench.Up({250, 80});
    EXPECT_EQ(bench.dialog.Told(), "");
    bench.dialog.Get<RadioGroup>(radioId).EnableWindow(false);
    bench.Tap(Point{450, 80});
    EXPECT_EQ(bench.dialog.Told(), "");
    bench.Tap(Point{630, 420});
    bench.Tap(Point{630, 395});  // above it, within reach
    EXPECT_EQ(bench.dialog.Told(), "on off ");
}

}  // namespace
}  // namespace varkel
