// Scroll bars, lists and radio groups.
#include <gtest/gtest.h>

#include "tests/support/dialog_survey.h"
#include "tests/support/ui_bench.h"
#include "ui/toolkit/check_box.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_scroll_bar.h"

namespace varkel::test {
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

struct Lists : testing::Test, UiBench {
    Lists() : UiBench("night") {
        dialog.Show();
        Settle();
    }
    // The first row that is seen, and the selected one.
    std::pair<int, int> Rows() {
        const auto& list = dialog.Get<ListBox>(listId);
        return {list.TopRow(), list.SelectedRow()};
    }

    ListDialog dialog{desktop};
};

constexpr Point upArrow{570, 140};
constexpr Point downArrow{570, 465};

TEST_F(Lists, AnArrowStepsWhenItIsReleasedAndWhileItIsHeld) {
    Tap(downArrow);
    EXPECT_EQ(dialog.Told(), "1:0 ");
    Tap(Point{barRect.Right() + 5, downArrow.y});  // a finger is wider than the bar
    EXPECT_EQ(dialog.Told(), "1:0 ");
    Down(upArrow);
    RunFor(195);  // 150 ms until the repeat begins, 50 ms a step
    EXPECT_EQ(dialog.Told(), "");
    RunFor(100);
    EXPECT_EQ(dialog.Told(), "0:0 0:0 ");
    Up(upArrow);
    EXPECT_EQ(dialog.Told(), "0:0 ");
    RunFor(1000);
    Down(upArrow);
    RunFor(160);
    Up({300, 300});
    RunFor(1000);
    EXPECT_EQ(dialog.Told(), "");
}

TEST_F(Lists, TheThumbFollowsTheFingerAndJumpsToTheTouchedPoint) {
    Down({575, 302});  // the middle of the channel
    EXPECT_EQ(dialog.Told(), "5:50 ");
    Move({575, 0});
    EXPECT_EQ(dialog.Told(), "5:0 ");
    Move({575, 479});
    Up({300, 479});
    EXPECT_EQ(dialog.Told(), "5:100 ");
    auto& bar = dialog.Get<CSkinScrollBar>(barPlace);
    EXPECT_EQ(bar.GetScrollPos(), 100);
    // Without anything to scroll nothing moves.
    bar.SetScrollRange(0, 0);
    Tap(Point{575, 302});
    EXPECT_EQ(dialog.Told(), "");
}

TEST_F(Lists, OnlyVerticalBarsExist) {
    ListDialog other(desktop, 0);
    other.Show();
    Settle();
    EXPECT_EQ(TextsOf(*desktop.Active()).at(0).text, "Don't surport horizontal scrollbar");
    Key(KeyCode::Return);
    EXPECT_EQ(desktop.Active(), &other);
    Tap(downArrow);
    EXPECT_EQ(other.Told(), "");
}

TEST_F(Lists, ATapSelectsADragScrolls) {
    Tap(Point{100, 130 + 86 + 10});
    EXPECT_EQ(dialog.Told(), "t1 ");
    EXPECT_EQ(Rows(), std::pair(0, 1));
    Down({100, 400});
    Move({100, 395});  // trembles
    Up({100, 395});
    EXPECT_EQ(dialog.Told(), "t3 ");
    Down({100, 400});
    Move({100, 400 - 3 * 86});
    Up({100, 400 - 3 * 86});
    EXPECT_EQ(dialog.Told(), "");
    EXPECT_EQ(Rows(), std::pair(3, 3));
    Tap(Point{100, 135});
    EXPECT_EQ(dialog.Told(), "t3 ");
}

TEST_F(Lists, StayWithinTheirRowsWhateverBecomesOfThem) {
    auto& list = dialog.Get<ListBox>(listId);
    int moved = 0;
    list.onScroll = [&moved] { ++moved; };
    list.SetTopRow(1000);
    EXPECT_EQ(list.TopRow(), 36);
    EXPECT_EQ(moved, 1);
    list.PageUp();
    EXPECT_EQ(list.TopRow(), 32);
    list.SelectRow(1000);
    EXPECT_EQ(Rows(), std::pair(36, 39));
    dialog.rows = 2;
    list.Reload();
    EXPECT_EQ(Rows(), std::pair(0, 1));
    Tap(Point{100, 400});  // below the last row
    EXPECT_EQ(dialog.Told(), "");
    dialog.rows = 0;
    list.Reload();
    EXPECT_EQ(Rows(), std::pair(0, -1));
    list.SelectRow(3);
    dialog.SetFocus(&list);
    for (const KeyCode key : {KeyCode::Down, KeyCode::PageDown, KeyCode::End, KeyCode::Up})
        Key(key);
    EXPECT_EQ(Rows(), std::pair(0, -1));
}

TEST_F(Lists, AnotherItemOfAGroupIsChosenTheChosenOneDoesNothing) {
    Tap(Point{250, 80});
    EXPECT_EQ(dialog.Told(), "r1 ");
    Tap(Point{250, 80});
    Down({450, 80});
    Up({250, 80});
    dialog.Get<RadioGroup>(radioId).EnableWindow(false);
    Tap(Point{450, 80});
    EXPECT_EQ(dialog.Told(), "");
    Tap(Point{630, 420});
    Tap(Point{630, 395});  // above it, within reach
    EXPECT_EQ(dialog.Told(), "on off ");
}

}  // namespace
}  // namespace varkel::test
