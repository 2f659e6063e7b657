#include "platform/linux/sdl_display.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/dialog_fixture.h"
#include "tests/platform/display_server.h"
#include "tests/platform/problem_list.h"
#include "tests/platform/thread_watch.h"
#include "tests/support/memory_files.h"

namespace varkel {
namespace {

using testing::Contains;

constexpr Point corner{112, 144};  // of the window, in the middle of the server's glass

class SdlDisplayTest : public test::DialogFixture {
  protected:
    void Open(bool fullScreen) {
        display = SdlDisplay::Create(runtime, loop, files, {fullScreen, problems.Sink()});
        ASSERT_TRUE(display);
        display->SetClient({.onPaint =
                                [this](Canvas& canvas, const Rect&) {
                                    canvas.FillRect({0, 0, 800, 480}, color);
                                },
                            .onTouch = [this](const TouchEvent& touch) { touches.push_back(touch); },
                            .onKey =
                                [this](const KeyEvent& key) {
                                    keys += std::to_string(static_cast<int>(key.code)) + key.text + "/";
                                }});
        display->SetWindowText("3Gwindow");
        display->ShowWindow(true);
    }
    bool Shows(Point at, ColorRef wanted) {
        return ServeUntil([&] { return server.PixelAt({corner.x + at.x, corner.y + at.y}) == wanted; });
    }
    bool Heard(TouchAction action, Point at) {
        return ServeUntil([&] {
            return std::ranges::any_of(
                touches, [&](const TouchEvent& touch) { return touch.action == action && touch.at == at; });
        });
    }

    test::DisplayServer server;
    test::MemoryFiles files;
    ColorRef color = Rgb(255, 0, 0);
    std::vector<TouchEvent> touches;
    std::string keys;
    test::ProblemList problems;
    std::unique_ptr<SdlDisplay> display;  // ends before what its thread uses
};

TEST_F(SdlDisplayTest, ShowsWhatIsPaintedAndHearsWhatIsTouched) {
    Open(false);
    EXPECT_TRUE(Shows({0, 0}, color) && Shows({799, 479}, color));
    EXPECT_EQ(server.PixelAt({corner.x - 1, corner.y}), 0u);
    color = Rgb(0, 200, 9);
    display->InvalidateRect({100, 100, 10, 10});
    EXPECT_TRUE(Shows({100, 100}, color) && Shows({109, 109}, color) && Shows({99, 100}, Rgb(255, 0, 0)));

    EXPECT_TRUE(server.Do({"search", "--name", "^3Gwindow$"}));
    EXPECT_TRUE(server.Do({"mousemove", "412", "244", "mousedown", "1"}));
    EXPECT_TRUE(Heard(TouchAction::Down, {300, 100}));
    EXPECT_TRUE(server.Do({"mousemove", "12", "44"}));
    EXPECT_TRUE(Heard(TouchAction::Move, {-100, -100})) << "a press is followed beyond the window";
    EXPECT_EQ(display->GetCursorPos(), (Point{-100, -100}));
    EXPECT_TRUE(server.Do({"mouseup", "1"}));
    EXPECT_TRUE(Heard(TouchAction::Up, {-100, -100}));
    EXPECT_TRUE(server.Do({"mousemove", "412", "244", "key", "a", "Return", "BackSpace", "7"}));
    EXPECT_TRUE(ServeUntil([&] { return keys == "0a/13/8/07/"; })) << keys;

    display->ShowWindow(false);
    EXPECT_TRUE(Shows({50, 50}, 0));
    color = Rgb(1, 2, 3);
    display->InvalidateRect({0, 0, 800, 480});
    display->ShowWindow(true);
    EXPECT_TRUE(Shows({50, 50}, color));
    EXPECT_EQ(problems.All(), std::vector<std::string>());
}

TEST_F(SdlDisplayTest, StandsInTheMiddleOfALargerPanel) {
    Open(true);
    EXPECT_TRUE(Shows({0, 0}, color) && Shows({799, 479}, color) && Shows({-1, 0}, 0) &&
                Shows({800, 479}, 0));
    EXPECT_TRUE(server.Do({"mousemove", "112", "144", "click", "1"}));
    EXPECT_TRUE(Heard(TouchAction::Up, {0, 0}));
}

TEST_F(SdlDisplayTest, SleepsWhileNothingHappens) {
    Open(false);
    EXPECT_TRUE(Shows({799, 479}, color));
    const auto quiet = [] {
        const long before = test::WakeUpsOf("display");
        usleep(200'000);
        return before > 0 && test::WakeUpsOf("display") == before;
    };
    EXPECT_TRUE(quiet() || quiet() || quiet());
}

TEST_F(SdlDisplayTest, SaysWhyThereIsNoWindow) {
    server.Stop();
    EXPECT_FALSE(SdlDisplay::Create(runtime, loop, files, {false, problems.Sink()}));
    ASSERT_EQ(problems.All().size(), 1u);
    EXPECT_EQ(problems.All()[0].substr(0, 11), "no window: ");
    EXPECT_GT(problems.All()[0].size(), 15u);
}

// The last one, because SDL keeps the lost connection.
TEST_F(SdlDisplayTest, OutlivesTheServer) {
    Open(false);
    EXPECT_TRUE(Shows({799, 479}, color));
    server.Stop();
    EXPECT_TRUE(ServeUntil([&] { return !problems.All().empty(); }));
    EXPECT_THAT(problems.All(), Contains("the display server has gone"));
    display->InvalidateRect({0, 0, 800, 480});
    display->UpdateWindow();
    display->ShowWindow(false);
}

}  // namespace
}  // namespace varkel
