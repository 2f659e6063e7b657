// The pictures of both skins, as the build has made them.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/key_file.h"
#include "platform/linux/bmp_file.h"
#include "tests/platform/pictures.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t magenta = 0xFF00FF;

BmpPicture Read(const fs::path& path) {
    const std::string bytes = test::FileContent(path);
    EXPECT_EQ(bytes.at(28), 24) << "bits a pixel";
    return ReadBmp(bytes).value();
}

std::uint32_t At(const BmpPicture& picture, int x, int y) {
    return picture.pixels.at(static_cast<std::size_t>(y * picture.size.width + x));
}

// Of two colours 0xRRGGBB.
double Contrast(std::uint32_t a, std::uint32_t b) {
    const auto color = [](std::uint32_t value) { return Rgb(value >> 16, value >> 8 & 0xFF, value & 0xFF); };
    return test::Contrast(color(a), color(b));
}

// A row of the table in the skin's README.
struct Listed {
    std::string name;
    std::vector<std::string> suffixes;
    std::string size;
    bool keyed = false;
};

std::vector<Listed> ListedPictures() {
    const std::regex row(R"(\| ([^| ]+) *\| ([^|]*?) *\| (\d+ x \d+) *\| (\w*) *\|.*)");
    std::istringstream readme(test::FileContent(VARKEL_SKIN "/README.md"));
    std::vector<Listed> listed;
    std::smatch cells;
    for (std::string line; std::getline(readme, line);) {
        if (!std::regex_match(line, cells, row)) continue;
        listed.push_back({cells[1], {}, cells[3], cells[4] == "yes"});
        std::istringstream suffixes(cells[2]);
        for (std::string suffix; std::getline(suffixes >> std::ws, suffix, ',');)
            listed.back().suffixes.push_back(suffix == "-" ? "" : suffix);
    }
    return listed;
}

// The weakest contrast of the palette's colours inside the edges against the one that covers most. Edges of
// lines are mixed and do not count. 0 when there is nothing to be seen.
double IconContrast(const BmpPicture& bmp, int inset, std::uint32_t ground,
                    const std::set<std::uint32_t>& palette) {
    std::map<std::uint32_t, int> counts;
    for (int y = inset; y < bmp.size.height - inset; ++y) {
        for (int x = inset; x < bmp.size.width - inset; ++x) {
            const std::uint32_t color = At(bmp, x, y) == magenta ? ground : At(bmp, x, y);
            if (palette.contains(color)) ++counts[color];
        }
    }
    const auto face = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    double weakest = counts.size() > 1 ? 21 : 0;
    for (const auto& [color, count] : counts) {
        if (color != face->first && count >= 10) weakest = std::min(weakest, Contrast(color, face->first));
    }
    return weakest;
}

class SkinTest : public testing::TestWithParam<const char*> {
  protected:
    fs::path File(const std::string& name) const { return pictures / (name + ".bmp"); }
    std::uint32_t Color(const std::string& name) const {
        return static_cast<std::uint32_t>(std::stoul(palette.Get("", name, "#").substr(1), nullptr, 16));
    }

    const fs::path pictures =
        fs::path(VARKEL_ASSETS) / (std::string("skin-") + GetParam()) / "ResidentFlash2/bin/Gprs";
    const KeyFile palette = KeyFile::Parse(test::FileContent((pictures / "palette.txt").string()));
};

TEST_P(SkinTest, PicturesAreAsTheReadmeListsThem) {
    int count = 0;
    for (const Listed& listed : ListedPictures()) {
        std::set<std::vector<std::uint32_t>> looks;
        for (const std::string& suffix : listed.suffixes) {
            SCOPED_TRACE(listed.name + suffix);
            ASSERT_TRUE(fs::exists(File(listed.name + suffix)));
            const BmpPicture bmp = Read(File(listed.name + suffix));
            EXPECT_EQ(std::to_string(bmp.size.width) + " x " + std::to_string(bmp.size.height), listed.size);
            EXPECT_EQ(std::ranges::count(bmp.pixels, magenta) > 0, listed.keyed);
            EXPECT_TRUE(looks.insert(bmp.pixels).second || listed.name == "MainInterface/Badge")
                << "looks like another state";
            ++count;
        }
    }
    for (const auto& file : fs::recursive_directory_iterator(pictures))
        count -= file.path().extension() == ".bmp" ? 1 : 0;
    EXPECT_EQ(count, 0) << "pictures that are not listed";
}

TEST_P(SkinTest, IconsAreSeenOnTheirGround) {
    std::set<std::uint32_t> colors;
    for (const KeyFile::Entry& entry : palette.Entries())
        colors.insert(Color(entry.key));
    const std::set<std::string> withoutIcon = {"Keyboard/EmptyButton", "Ussd/Empty",        "Other/PhraseRow",
                                               "MainInterface/Badge",  "Other/CancelStart", "Sip/Key",
                                               "Sip/Function",         "Sip/FunctionWide"};
    int seen = 0;
    for (const Listed& listed : ListedPictures()) {
        const bool touched = listed.suffixes.size() > 1 || listed.suffixes[0] == "Sel";
        const bool isTab = listed.suffixes[0] == "1";
        if (!touched || isTab || withoutIcon.contains(listed.name)) continue;
        for (const std::string& suffix : listed.suffixes) {
            const BmpPicture bmp = Read(File(listed.name + suffix));
            const bool isSquare = bmp.size.width == bmp.size.height;
            const int inset = bmp.size.width == 200 ? 16 : isSquare ? bmp.size.width / 9 : 9;
            const std::uint32_t ground = Color(suffix == "Sel" ? "pressed" : "well");
            const bool isOff = suffix.find("Dis") != std::string::npos;
            EXPECT_GE(IconContrast(bmp, listed.keyed ? 0 : inset, ground, colors), isOff ? 3 : 4.5)
                << listed.name << suffix;
            ++seen;
        }
    }
    EXPECT_GT(seen, 100);
}

INSTANTIATE_TEST_SUITE_P(Palettes, SkinTest, testing::Values("night", "day"));

TEST(IconTest, HasNoText) {
    for (const auto& file : fs::directory_iterator(VARKEL_SKIN "/icons")) {
        const std::string svg = test::FileContent(file.path().string());
        for (const char* const element : {"<text", "<tspan", "<image", "font-family"})
            EXPECT_EQ(svg.find(element), std::string::npos) << file.path();
    }
}

}  // namespace
}  // namespace varkel
