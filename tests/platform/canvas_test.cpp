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
    test::MemoryFiles files;
    CairoGraphics graphics{files};
};

TEST_F(CanvasTest, DrawsWhatLiesWithinItsClips) {
    files.WriteWhole("picture", test::Bmp({"rgb", "wkr"}));
    const auto picture = graphics.LoadBitmap("picture");
    const Rect whole{0, 0, 6, 4};
    using Draw = std::function<void(Canvas&)>;
    const auto fill = [](const Rect& rect, char color) -> Draw {
        return [=](Canvas& c) { c.FillRect(rect, test::ColorOf(color)); };
    };
    const auto blit = [&](Point at) -> Draw { return [&, at](Canvas& c) { c.BitBlt(*picture, at); }; };
    const auto part = [&](const Rect& of, Point at) -> Draw {
        return [&, of, at](Canvas& c) { c.BitBlt(*picture, of, at); };
    };
    const auto keyed = [&](const Rect& to, char key) -> Draw {
        return [&, to, key](Canvas& c) { c.TransparentImage(*picture, to, test::ColorOf(key)); };
    };
    const auto clip = [](const Rect& rect) -> Draw { return [=](Canvas& c) { c.PushClip(rect); }; };
    const Draw pop = [](Canvas& c) { c.PopClip(); };
    const Draw text = [&](Canvas& c) { c.DrawText("M", whole, TextFormat::Left, {"", 22}, ~0u); };
    const Rows nothing{"......", "......", "......", "......"};
    const struct {
        const char* name;
        std::vector<Draw> draws;
        Rows expected;
    } cases[] = {
        {"fill, partly outside", {fill({3, -5, 90, 7}, 'r')}, {"...rrr", "...rrr", "......", "......"}},
        {"an empty fill", {fill({1, 1, -3, 2}, 'r')}, nothing},
        {"blit over two borders", {blit({-1, -1})}, {"kr....", "......", "......", "......"}},
        {"a part beyond the picture", {part({-1, 1, 3, 9}, {})}, {".wk...", "......", "......", "......"}},
        {"another key of the same picture",
         {keyed({0, 0, 3, 2}, 'k'), keyed({3, 2, 3, 2}, 'r')},
         {"rgb...", "w.r...", "....gb", "...wk."}},
        {"nested clips",
         {clip({1, 0, 4, 3}), clip({3, 1, 9, 9}), fill(whole, 'r'), pop, blit({}), pop,
          fill({0, 3, 6, 1}, 'w')},
         {".gb...", ".krrr.", "...rr.", "wwwwww"}},
        {"clips with nothing in common",
         {clip({0, 0, 2, 2}), clip({3, 3, 2, 2}), fill(whole, 'r'), text},
         nothing},
        {"a pop too many", {pop, fill({0, 0, 1, 1}, 'r')}, {"r.....", "......", "......", "......"}},
    };
    for (const auto& [name, draws, expected] : cases) {
        const auto surface = graphics.CreateSurface({6, 4});
        for (const Draw& draw : draws)
            draw(surface->GetCanvas());
        EXPECT_EQ(test::RowsOf(surface->Picture()), expected) << name;
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
