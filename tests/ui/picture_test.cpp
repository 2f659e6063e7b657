// Every screen as it looked when that was last found good, to the pixel. What differs is kept in the build
// directory beside the difference; VARKEL_RENEW_PICTURES=1 makes the present looks the good ones.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>

#include "tests/ui/gallery.h"

namespace varkel::test {
namespace {

struct Wall {
    const char* skin;
    const char* language;
    std::size_t first, step;  // which of the exhibits hang there
};

struct Pictures : testing::TestWithParam<Wall> {};

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface ReadPng(const std::filesystem::path& file) {
    return {cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy};
}

// Leaves the difference in `picture`, and answers how many pixels have one; -1 when the sizes do.
int Subtract(cairo_surface_t* picture, cairo_surface_t* other) {
    const int width = cairo_image_surface_get_width(picture),
              height = cairo_image_surface_get_height(picture);
    if (cairo_image_surface_get_width(other) != width || cairo_image_surface_get_height(other) != height)
        return -1;
    cairo_t* const context = cairo_create(picture);
    cairo_set_operator(context, CAIRO_OPERATOR_DIFFERENCE);
    cairo_set_source_surface(context, other, 0, 0);
    cairo_paint(context);
    cairo_destroy(context);
    cairo_surface_flush(picture);
    int count = 0;
    for (int y = 0; y < height; ++y) {
        const auto* const row = reinterpret_cast<const std::uint32_t*>(
            cairo_image_surface_get_data(picture) + y * cairo_image_surface_get_stride(picture));
        count += static_cast<int>(
            std::count_if(row, row + width, [](auto pixel) { return (pixel & 0xFFFFFF) != 0; }));
    }
    return count;
}

TEST_P(Pictures, AreAsTheyWere) {
    const auto [skin, language, first, step] = GetParam();
    const std::string wall = std::string(skin) + "-" + language;
    const std::filesystem::path good = std::filesystem::path(VARKEL_PICTURES) / wall;
    const std::filesystem::path now = std::filesystem::path(VARKEL_PICTURES_NOW) / wall;
    const bool renew = std::getenv("VARKEL_RENEW_PICTURES") != nullptr;
    std::filesystem::create_directories(renew ? good : now);

    Gallery gallery(skin, language);
    for (std::size_t index = first; index < std::size(exhibits); index += step) {
        const Exhibit& exhibit = exhibits[index];
        auto screen = exhibit.open(gallery);
        gallery.RunFor(10);
        const std::string name = std::string(exhibit.name) + ".png";
        const auto file = (renew ? good : now) / name;
        ASSERT_TRUE(gallery.display.SavePng(file));
        if (!renew) {
            const auto difference = ReadPng(file);
            const int pixels = Subtract(difference.get(), ReadPng(good / name).get());
            EXPECT_EQ(pixels, 0)
                << file << " is not " << good / name
                << ". Other fonts, or another version of cairo or Pango, have this effect on all.";
            if (pixels == 0) {
                std::filesystem::remove(file);
            } else {
                cairo_surface_write_to_png(difference.get(), (now / ("difference-" + name)).c_str());
            }
        }
        screen.reset();
        gallery.below.reset();
        gallery.dialog->Calls().HangUp();
        gallery.RunFor(3000);
    }
}

// Each screen in both skins, and a third script that is read from the right.
INSTANTIATE_TEST_SUITE_P(Walls, Pictures,
                         testing::Values(Wall{"night", "english", 0, 1}, Wall{"day", "russian", 0, 2},
                                         Wall{"day", "arabic", 1, 2}),
                         [](const auto& run) {
                             return std::string(run.param.skin) + "_" + run.param.language;
                         });

}  // namespace
}  // namespace varkel::test
