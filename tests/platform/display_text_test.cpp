#include <cstdlib>
#include <gtest/gtest.h>

#include "platform/linux/cairo_graphics.h"
#include "platform/text.h"
#include "tests/platform/pictures.h"
#include "tests/support/memory_files.h"

namespace varkel {
namespace {

class DisplayTextTest : public testing::Test {
  protected:
    // What is drawn on black.
    std::unique_ptr<Surface> Draw(std::string_view text, const Rect& rect, TextFormat format,
                                  const LogFont& font) {
        auto surface = graphics.CreateSurface({400, 200});
        surface->GetCanvas().DrawText(text, rect, format, font, Rgb(255, 255, 255));
        return surface;
    }
    Rect InkOf(std::string_view text, const Rect& rect, TextFormat format, const LogFont& font) {
        return test::Ink(Draw(text, rect, format, font)->Picture());
    }

    test::MemoryFiles files;
    CairoGraphics backend{files};
    Graphics& graphics = backend;
};

TEST_F(DisplayTextTest, IsMeasuredInWholeLinesAndWithinBounds) {
    const LogFont font{"黑体", 22, 700};
    const std::string text =
        "打开3G串口失败，机器需要重启，3G才能正常使用 and then some more words that need room";
    EXPECT_LE(graphics.MeasureText(text, font, 290).width, 290);
    EXPECT_EQ(graphics.MeasureText(text, font, 290).height, 4 * 22);
    EXPECT_EQ(graphics.MeasureText("one\ntwo\r\nthree", font, 300).height, 3 * 22);
    EXPECT_EQ(graphics.MeasureText("one\ntwo", font).height, 22);
    const auto height = [&](int asked) {
        return InkOf("H", {0, 0, 400, 200}, TextFormat::Left, {"", asked}).height;
    };
    EXPECT_EQ(graphics.MeasureText("H", {"", 0}).height, 22) << "the default";
    EXPECT_NEAR(height(40), 25, 1) << "of a line";
    EXPECT_NEAR(height(-40), 29, 1) << "of the letters";
    EXPECT_NEAR(height(100'000), height(480), 1);
}

TEST_F(DisplayTextTest, FindsThePlaceOfACharacterAndBack) {
    const LogFont font{"", 32};
    for (const std::string text : {"Messages (12)", "Сообщения", "短消息设置", "a\xFF\x01z"}) {
        std::size_t characters = 0;
        for (std::size_t at = 0; at <= text.size();) {
            const int x = graphics.CaretPlace(text, font, at);
            EXPECT_EQ(graphics.TextPosition(text, font, x), at) << text;
            EXPECT_EQ(graphics.TextPosition(text, font, x + 1), at) << text;
            at += at == text.size() ? 1 : FirstCharacterBytes(text.substr(at));
            ++characters;
        }
        EXPECT_EQ(graphics.TextPosition(text, font, -50), 0u);
        EXPECT_EQ(graphics.TextPosition(text, font, 5000), text.size()) << text;
        EXPECT_GT(characters, 4u);
    }
    const std::string rightToLeft = "رسائل قصيرة";
    EXPECT_GT(graphics.CaretPlace(rightToLeft, font, 0),
              graphics.CaretPlace(rightToLeft, font, rightToLeft.size()));
    EXPECT_EQ(graphics.CaretPlace("", font, 7), 0);
}

TEST_F(DisplayTextTest, ShowsAnythingAtAll) {
    const LogFont font{"", 24};
    const auto same = [&](std::string_view a, std::string_view b) {
        const Rect rect{0, 0, 400, 100};
        return test::RowsOf(Draw(a, rect, TextFormat::SingleLine, font)->Picture()) ==
               test::RowsOf(Draw(b, rect, TextFormat::SingleLine, font)->Picture());
    };
    EXPECT_TRUE(
        same("a\x80"
             "b\xE2\x82"
             "c",
             "a\uFFFDb\uFFFD\uFFFDc"));
    EXPECT_TRUE(same(std::string_view("a\0b\x1B", 4), "a\uFFFDb\uFFFD"));
    EXPECT_TRUE(same("a\r\nb\tc", "a  b c"));
    EXPECT_FALSE(same("a\uFFFDb", "a b"));
    std::string noise(20'000, '\0');
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<char>(i * 2654435761u >> 13);
    for (std::size_t at = 0; at + 5000 < noise.size(); at += 1000) {
        const std::string_view part = std::string_view(noise).substr(at, at % 2000 ? 50 : 5000);
        const Rect ink =
            InkOf(part, {10, 10, 200, 50}, TextFormat::WordBreak | TextFormat::EndEllipsis, font);
        EXPECT_EQ(Intersection(ink, {10, 10, 200, 50}), ink);
        EXPECT_LE(graphics.TextPosition(part, font, 300), part.size());
    }
}

TEST_F(DisplayTextTest, LooksTheSameWhateverTheUsersSettingsAre) {
    const auto look = [](Graphics& drawing, const char* font) {
        const auto surface = drawing.CreateSurface({400, 60});
        surface->GetCanvas().DrawText("Äg短قص", {0, 0, 400, 60}, {}, {font, 40}, Rgb(255, 255, 255));
        return test::RowsOf(surface->Picture());
    };
    const test::Rows before = look(graphics, "Arial");
    setenv("FONTCONFIG_FILE", "/dev/null", 1);
    CairoGraphics others(files);
    EXPECT_EQ(look(others, "serif"), before);
    unsetenv("FONTCONFIG_FILE");
}

}  // namespace
}  // namespace varkel
