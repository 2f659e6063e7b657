#include "platform/linux/bmp_file.h"

#include <gtest/gtest.h>

#include "tests/platform/pictures.h"

namespace varkel {
namespace {

using test::LittleEndian;

// Two columns, two rows; from the top: red, green, blue, white.
std::string Picture(std::uint32_t bits) {
    std::string file = test::Bmp({"rg", "bw"});
    if (bits == 24) return file;
    file.replace(28, 2, LittleEndian(bits, 2));
    const std::string lower(
        "\xFF\0\0\x11"
        "\xFF\xFF\xFF\0",
        8);
    const std::string upper(
        "\0\0\xFF\x99"
        "\0\xFF\0\0",
        8);
    return file.substr(0, 54) + lower + upper;
}

std::string With(std::string file, std::size_t at, std::string_view bytes) {
    return file.replace(at, bytes.size(), bytes);
}

TEST(BmpFile, IsReadFromEitherEnd) {
    const std::vector<std::uint32_t> upright{0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
    const std::vector<std::uint32_t> mirrored{0x0000FF, 0xFFFFFF, 0xFF0000, 0x00FF00};
    for (const std::uint32_t bits : {24u, 32u}) {
        const auto picture = ReadBmp(Picture(bits));
        ASSERT_TRUE(picture) << bits;
        EXPECT_EQ(picture->size, (Size{2, 2}));
        EXPECT_EQ(picture->pixels, upright) << bits;
        const auto fromTheTop = ReadBmp(With(Picture(bits), 22, "\xFE\xFF\xFF\xFF"));
        ASSERT_TRUE(fromTheTop) << bits;
        EXPECT_EQ(fromTheTop->pixels, mirrored) << bits;
    }
    const std::string masks = LittleEndian(0xFF0000, 4) + LittleEndian(0xFF00, 4) + LittleEndian(0xFF, 4);
    std::string masked = With(With(Picture(32), 30, LittleEndian(3, 4)), 10, LittleEndian(66, 4));
    masked.insert(54, masks);
    ASSERT_TRUE(ReadBmp(masked));
    EXPECT_EQ(ReadBmp(masked)->pixels, upright);
    EXPECT_FALSE(ReadBmp(With(masked, 54, LittleEndian(0xFF, 4)))) << "another order of colours";
}

TEST(BmpFile, IsNoPictureWhenAnythingIsWrong) {
    const std::string good = Picture(24);
    const auto number = [](std::uint32_t value) { return LittleEndian(value, 4); };
    const std::pair<const char*, std::string> bad[] = {
        {"nothing", ""},
        {"another kind", With(good, 0, "PM")},
        {"a short header", With(good, 14, number(12))},
        {"pixels inside the header", With(good, 10, number(53))},
        {"pixels behind the end", With(good, 10, number(0xFFFFFFFF))},
        {"pixels that begin one byte late", With(good, 10, number(55))},
        {"no width", With(good, 18, number(0))},
        {"a negative width", With(good, 18, number(0xFFFFFFFE))},
        {"no height", With(good, 22, number(0))},
        {"the lowest height", With(good, 22, number(0x80000000))},
        {"one row more than there is", With(good, 22, number(3))},
        {"a row too many from the top", With(good, 22, number(0xFFFFFFFD))},
        {"sides that are too long", With(With(good, 18, number(2001)), 22, number(2001))},
        {"sides whose product overflows", With(With(good, 18, number(0x7FFFFFFF)), 22, number(0x7FFFFFFF))},
        {"two planes", With(good, 26, "\x02")},
        {"eight bits", With(good, 28, "\x08")},
        {"run lengths", With(good, 30, "\x01")},
        {"masks of 24 bits", With(good, 30, "\x03")},
    };
    for (const auto& [name, file] : bad)
        EXPECT_FALSE(ReadBmp(file)) << name;
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_FALSE(ReadBmp(good.substr(0, length))) << length;
    EXPECT_TRUE(ReadBmp(good + "and something behind it"));
}

}  // namespace
}  // namespace varkel
