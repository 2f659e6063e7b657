#include "platform/linux/bmp_file.h"

#include <gtest/gtest.h>

#include "tests/platform/pictures.h"

namespace varkel {
namespace {

std::string Number(std::uint32_t value) {
    return test::LittleEndian(value, 4);
}

std::string With(std::string file, std::size_t at, std::string_view bytes) {
    return file.replace(at, bytes.size(), bytes);
}

// Two columns, two rows, in bytes of three and of four a pixel.
const std::string ofThree = test::Bmp({"rg", "bw"});
const std::string ofFour = With(ofThree.substr(0, 54), 28, "\x20") +
                           std::string("\xFF\0\0\x11\xFF\xFF\xFF\0\0\0\xFF\x99\0\xFF\0\0", 16);

TEST(BmpFile, IsReadFromEitherEnd) {
    const std::vector<std::uint32_t> upright{0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
    const std::vector<std::uint32_t> mirrored{0x0000FF, 0xFFFFFF, 0xFF0000, 0x00FF00};
    std::string masked = With(With(ofFour, 30, Number(3)), 10, Number(66));
    masked.insert(54, Number(0xFF0000) + Number(0xFF00) + Number(0xFF));
    for (const std::string& file : {ofThree, ofFour, masked, ofThree + "and something behind it"}) {
        const auto picture = ReadBmp(file);
        const auto fromTheTop = ReadBmp(With(file, 22, Number(0xFFFFFFFE)));
        ASSERT_TRUE(picture && fromTheTop) << file.size();
        EXPECT_EQ(picture->size, (Size{2, 2}));
        EXPECT_EQ(picture->pixels, upright) << file.size();
        EXPECT_EQ(fromTheTop->pixels, mirrored) << file.size();
    }
    EXPECT_FALSE(ReadBmp(With(masked, 54, Number(0xFF)))) << "another order of colours";
}

TEST(BmpFile, IsNoPictureWhenAnythingIsWrong) {
    const struct {
        const char* name;
        std::size_t at;
        std::string bytes;
    } faults[] = {
        {"another kind", 0, "PM"},
        {"pixels inside the header", 10, Number(53)},
        {"pixels behind the end", 10, Number(0xFFFFFFFF)},
        {"pixels that begin one byte late", 10, Number(55)},
        {"a short header", 14, Number(12)},
        {"no width", 18, Number(0)},
        {"a negative width", 18, Number(0xFFFFFFFE)},
        {"no height", 22, Number(0)},
        {"the lowest height", 22, Number(0x80000000)},
        {"one row more than there is", 22, Number(3)},
        {"a row too many from the top", 22, Number(0xFFFFFFFD)},
        {"sides whose product overflows", 18, Number(0x7FFFFFFF) + Number(0x7FFFFFFF)},
        {"two planes", 26, "\x02"},
        {"eight bits", 28, "\x08"},
        {"run lengths", 30, "\x01"},
        {"masks of 24 bits", 30, "\x03"},
    };
    for (const auto& [name, at, bytes] : faults)
        EXPECT_FALSE(ReadBmp(With(ofThree, at, bytes))) << name;
    for (std::size_t length = 0; length < ofThree.size(); ++length)
        EXPECT_FALSE(ReadBmp(ofThree.substr(0, length))) << length;
}

}  // namespace
}  // namespace varkel
