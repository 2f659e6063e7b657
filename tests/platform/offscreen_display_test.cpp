#include "platform/linux/offscreen_display.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/pictures.h"
#include "tests/support/memory_files.h"
#include "tests/support/virtual_runtime.h"

namespace varkel {
namespace {

using testing::ElementsAre;

class OffscreenDisplayTest : public testing::Test {
  protected:
    OffscreenDisplayTest() {
        display.SetClient({.onPaint =
                               [this](Canvas& canvas, const Rect& damage) {
                                   paints.push_back(damage);
                                   canvas.FillRect({0, 0, 800, 480}, color);
                                   if (whilePainting) std::exchange(whilePainting, nullptr)();
                               },
                           .onTouch =
                               [this](const TouchEvent& touch) {
                                   heard.push_back("DMU"[static_cast<int>(touch.action)] +
                                                   std::to_string(touch.at.x));
                                   if (onTouch) std::exchange(onTouch, nullptr)();
                               },
                           .onKey = [this](const KeyEvent& key) { heard.push_back("key " + key.text); },
                           .onClose = [this] { heard.emplace_back("close"); }});
    }

    // Serves what has been posted by now, and what follows from it.
    void Serve() {
        for (int round = 0; round < 2 * static_cast<int>(DisplayInput::limit); ++round) {
            bool served = false;
            loop.Post([&] { served = true; });
            loop.Run([&] { return served; });
        }
    }
    std::vector<Rect> Paints() {
        Serve();
        return std::exchange(paints, {});
    }

    test::VirtualRuntime runtime{1};
    MessageLoop loop{runtime};
    test::MemoryFiles files;
    OffscreenDisplay display{loop, files};
    ColorRef color = test::ColorOf('r');
    std::vector<Rect> paints;
    std::vector<std::string> heard;
    std::function<void()> whilePainting;
    std::function<void()> onTouch;
};

TEST_F(OffscreenDisplayTest, PaintsOnceForAllThatWasMarked) {
    const Rect whole{0, 0, 800, 480};
    EXPECT_THAT(Paints(), ElementsAre()) << "hidden";
    display.ShowWindow(true);
    EXPECT_THAT(paints, ElementsAre()) << "not at once";
    EXPECT_THAT(Paints(), ElementsAre(whole));

    color = test::ColorOf('g');
    display.InvalidateRect({10, 10, 5, 5});
    display.InvalidateRect({20, 12, 5, 5});
    display.InvalidateRect({-50, -50, 20, 20});
    EXPECT_THAT(Paints(), ElementsAre(Rect{10, 10, 15, 7}));
    const auto at = [&](int x, int y) { return test::LetterOf(display.Picture().GetPixel({x, y})); };
    EXPECT_EQ(std::string({at(9, 10), at(10, 10), at(24, 16), at(25, 16), at(24, 17)}), "rggrr");

    display.InvalidateRect({790, 470, 50, 50});
    display.UpdateWindow();
    EXPECT_THAT(paints, ElementsAre(Rect{790, 470, 10, 10}));
    EXPECT_THAT(Paints(), ElementsAre(Rect{790, 470, 10, 10})) << "it is painted already";

    whilePainting = [this] {
        display.InvalidateRect({1, 1, 1, 1});
        display.UpdateWindow();
    };
    display.InvalidateRect({5, 5, 1, 1});
    EXPECT_THAT(Paints(), ElementsAre(Rect{5, 5, 1, 1}, Rect{1, 1, 1, 1}))
        << "one paint ends before the next";

    display.ShowWindow(false);
    display.InvalidateRect(whole);
    EXPECT_THAT(Paints(), ElementsAre());
}

TEST_F(OffscreenDisplayTest, TellsInputInItsOrderAndOneAtATime) {
    display.ShowWindow(true);
    EXPECT_EQ(display.GetCursorPos(), (Point{-1, -1}));
    display.Touch(TouchAction::Down, {1, 9});
    display.Touch(TouchAction::Down, {2, 9});
    for (int x = 3; x < 500; ++x)
        display.Touch(TouchAction::Move, {x, 9});
    EXPECT_EQ(display.GetCursorPos(), (Point{499, 9}));
    display.Touch(TouchAction::Up, {500, 9});
    display.Touch(TouchAction::Up, {501, 9});
    display.Key({KeyCode::None, "ü"});
    display.Close();
    // The first touch opens a modal screen, which gets the rest.
    onTouch = [this] {
        loop.Run([this] { return heard.back() == "key ü"; });
        heard.emplace_back("modal end");
    };
    Serve();
    EXPECT_THAT(heard, ElementsAre("D1", "M499", "U500", "key ü", "modal end", "close"));
    EXPECT_EQ(display.GetCursorPos(), (Point{-1, -1}));
}

TEST_F(OffscreenDisplayTest, NeverForgetsTheEndOfATouch) {
    display.ShowWindow(true);
    display.Touch(TouchAction::Down, {1, 1});
    for (int i = 0; i < 1000; ++i)
        display.Key({KeyCode::Back, ""});
    display.Touch(TouchAction::Up, {2, 2});
    display.Tap({3, 3});
    Serve();
    EXPECT_LE(heard.size(), DisplayInput::limit + 1);
    EXPECT_EQ(heard.front(), "D1");
    EXPECT_EQ(heard.back(), "U2") << "what came when it was full is dropped whole";

    heard.clear();
    display.Touch(TouchAction::Down, {4, 4});
    Serve();
    display.ShowWindow(false);
    display.Touch(TouchAction::Move, {5, 5});
    display.Touch(TouchAction::Up, {6, 6});
    display.Tap({7, 7});
    Serve();
    EXPECT_THAT(heard, ElementsAre("D4", "U6")) << "hidden";
}

TEST_F(OffscreenDisplayTest, MayGoWhileWorkIsPosted) {
    {
        OffscreenDisplay another(loop, files);
        another.SetClient(
            {.onPaint = [](Canvas&, const Rect&) { FAIL(); }, .onTouch = [](const TouchEvent&) { FAIL(); }});
        another.ShowWindow(true);
        another.Tap({1, 1});
    }
    Serve();
}

}  // namespace
}  // namespace varkel
