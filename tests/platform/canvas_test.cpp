#include "platform/canvas.h"

#include <functional>
#include <gtest/gtest.h>

#include "platform/linux/cairo_graphics.h"
#include "tests/platform/pictures.h"
#include "tests/support/memory_files.h"

namespace varkel {
namespace {

using test::Rows;

class CanvasTest : public testing::Test {
  protected:
    std::shared_ptr<const Bitmap> Picture(const Rows& rows) {
        const std::string path = "picture" + std::to_string(++m_pictures);
        files.WriteWhole(path, test::Bmp(rows));
        return graphics.LoadBitmap(path);
    }

    test::MemoryFiles files;
    CairoGraphics graphics{files};

  private:
    int m_pictures = 0;
};

TEST_F(CanvasTest, DrawsWhatLiesWithinItsClips) {
    const auto picture = Picture({"rgb", "wkr"});
    const auto key = test::ColorOf('k');
    const auto red = test::ColorOf('r');
    using Draw = std::function<void(Canvas&)>;
    const auto fill = [](const Rect& rect, ColorRef color) -> Draw {
        return [=](Canvas& c) { c.FillRect(rect, color); };
    };
    const auto blit = [&](Point at) -> Draw { return [&, at](Canvas& c) { c.BitBlt(*picture, at); }; };
    const auto part = [&](const Rect& of, Point at) -> Draw {
        return [&, of, at](Canvas& c) { c.BitBlt(*picture, of, at); };
    };
    struct Case {
        const char* name;
        Draw draw;
        Rows expected;
    };
    const Case cases[] = {
        {"fill, partly outside", fill({3, -5, 90, 7}, red), {"...rrr", "...rrr", "......", "......"}},
        {"an empty fill", fill({1, 1, -3, 2}, red), {"......", "......", "......", "......"}},
        {"blit", blit({1, 1}), {"......", ".rgb..", ".wkr..", "......"}},
        {"blit over two borders", blit({-1, -1}), {"kr....", "......", "......", "......"}},
        {"a part", part({1, 0, 2, 1}, {4, 3}), {"......", "......", "......", "....gb"}},
        {"a part that reaches beyond the picture",
         part({-1, 1, 3, 9}, {0, 0}),
         {".wk...", "......", "......", "......"}},
        {"stretch to its own size",
         [&](Canvas& c) {
             c.StretchBlt(*picture, {3, 2, 3, 2});
         },
         {"......", "......", "...rgb", "...wkr"}},
        {"stretch one pixel",
         [&](Canvas& c) {
             c.StretchBlt(*Picture({"g"}), {1, 1, 4, 2});
         },
         {"......", ".gggg.", ".gggg.", "......"}},
        {"transparent",
         [&](Canvas& c) {
             c.FillRect({0, 0, 6, 4}, test::ColorOf('b'));
             c.TransparentImage(*picture, {0, 0, 3, 2}, key);
         },
         {"rgbbbb", "wbrbbb", "bbbbbb", "bbbbbb"}},
        {"another key of the same picture",
         [&](Canvas& c) {
             c.TransparentImage(*picture, {0, 0, 3, 2}, key);
             c.TransparentImage(*picture, {3, 2, 3, 2}, red);
         },
         {"rgb...", "w.r...", "....gb", "...wk."}},
        {"nested clips",
         [&](Canvas& c) {
             c.PushClip({1, 0, 4, 3});
             c.PushClip({3, 1, 9, 9});
             c.FillRect({0, 0, 6, 4}, red);
             c.PopClip();
             c.BitBlt(*picture, {0, 0});
             c.PopClip();
             c.FillRect({0, 3, 6, 1}, test::ColorOf('w'));
         },
         {".gb...", ".krrr.", "...rr.", "wwwwww"}},
        {"clips with nothing in common",
         [&](Canvas& c) {
             c.PushClip({0, 0, 2, 2});
             c.PushClip({3, 3, 2, 2});
             c.FillRect({0, 0, 6, 4}, red);
             c.DrawText("M", {0, 0, 6, 4}, TextFormat::Left, {"", 22}, red);
         },
         {"......", "......", "......", "......"}},
        {"a pop too many",
         [&](Canvas& c) {
             c.PopClip();
             c.FillRect({0, 0, 1, 1}, red);
         },
         {"r.....", "......", "......", "......"}},
        {"a rectangle without curves",
         [&](Canvas& c) {
             c.RoundRect({1, 0, 5, 4}, 0, red, test::ColorOf('w'), 1);
         },
         {".wwwww", ".wrrrw", ".wrrrw", ".wwwww"}},
    };
    for (const Case& a : cases) {
        const auto surface = graphics.CreateSurface({6, 4});
        a.draw(surface->GetCanvas());
        EXPECT_EQ(test::RowsOf(surface->Picture()), a.expected) << a.name;
    }
}

TEST_F(CanvasTest, DrawsOnPicturesThatAreDrawnAgain) {
    const auto stamp = graphics.CreateSurface({1, 1});
    const auto surface = graphics.CreateSurface({3, 1});
    for (int x = 0; x < 3; ++x) {
        stamp->GetCanvas().FillRect({0, 0, 1, 1}, test::ColorOf("rkg"[x]));
        surface->GetCanvas().TransparentImage(stamp->Picture(), {x, 0, 1, 1}, test::ColorOf('k'));
    }
    EXPECT_EQ(test::RowsOf(surface->Picture()), Rows{"r.g"});
    EXPECT_EQ(surface->Picture().GetPixel({3, 0}), 0u);
    EXPECT_EQ(graphics.CreateSurface({-1, 5}), nullptr);
    EXPECT_EQ(graphics.CreateSurface({1'000'000, 1'000'000}), nullptr);
}

TEST_F(CanvasTest, LoadsAPictureOnceWhileSomebodyHoldsIt) {
    const std::string path = "\\ResidentFlash2\\bin\\Gprs\\Main.bmp";
    files.WriteWhole(path, test::Bmp({"r"}));
    auto first = graphics.LoadBitmap(path);
    ASSERT_TRUE(first);
    files.WriteWhole(path, test::Bmp({"g"}));
    EXPECT_EQ(graphics.LoadBitmap("residentflash2\\BIN\\gprs\\main.BMP"), first);
    first.reset();
    EXPECT_EQ(test::RowsOf(*graphics.LoadBitmap(path)), Rows{"g"});
    EXPECT_EQ(graphics.LoadBitmap("\\ResidentFlash2\\missing.bmp"), nullptr);
    files.WriteWhole(path, "no picture");
    EXPECT_EQ(graphics.LoadBitmap(path), nullptr);
}

}  // namespace
}  // namespace varkel
