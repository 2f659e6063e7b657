// The pictures of both skins, as the build has made them.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/key_file.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t magenta = 0xFF00FF;

fs::path Pictures(const std::string& palette) {
    return fs::path(VARKEL_ASSETS) / ("skin-" + palette) / "ResidentFlash2/bin/Gprs";
}

struct Bmp {
    int width = 0;
    int height = 0;
    int bits = 0;
    std::vector<std::uint32_t> pixels;  // 0xRRGGBB, from the top

    static Bmp Read(const fs::path& path) {
        const std::string bytes = test::FileContent(path.string());
        const auto number = [&bytes](std::size_t at, int octets) {
            std::uint32_t value = 0;
            for (int i = octets; i-- > 0;)
                value = value << 8 | static_cast<std::uint8_t>(bytes.at(at + static_cast<std::size_t>(i)));
            return value;
        };
        Bmp bmp{static_cast<int>(number(18, 4)),
                static_cast<int>(number(22, 4)),
                static_cast<int>(number(28, 2)),
                {}};
        const std::size_t stride = (static_cast<std::size_t>(bmp.width) * 3 + 3) / 4 * 4;
        for (int y = bmp.height - 1; y >= 0; --y) {
            for (int x = 0; x < bmp.width; ++x)
                bmp.pixels.push_back(
                    number(54 + static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x) * 3, 3));
        }
        return bmp;
    }

    std::uint32_t At(int x, int y) const { return pixels.at(static_cast<std::size_t>(y * width + x)); }
    bool Has(std::uint32_t color) const {
        return std::find(pixels.begin(), pixels.end(), color) != pixels.end();
    }
};

// A row of the table in the skin's README.
struct Listed {
    std::string name;
    std::vector<std::string> suffixes;
    std::string size;
    bool keyed = false;
};

std::vector<Listed> ListedPictures() {
    std::istringstream readme(test::FileContent(VARKEL_SKIN "/README.md"));
    std::vector<Listed> listed;
    bool inTable = false;
    for (std::string line; std::getline(readme, line);) {
        if (line.starts_with("| picture ")) inTable = true;
        if (!inTable || line.starts_with("| picture ") || !line.starts_with("| ")) continue;
        std::array<std::string, 4> cells;
        std::istringstream row(line.substr(1));
        for (std::string& cell : cells) {
            std::getline(row, cell, '|');
            cell.erase(0, cell.find_first_not_of(' '));
            cell.erase(cell.find_last_not_of(' ') + 1);
        }
        Listed picture{cells[0], {}, cells[2], cells[3] == "yes"};
        std::istringstream suffixes(cells[1]);
        for (std::string suffix; std::getline(suffixes >> std::ws, suffix, ',');)
            picture.suffixes.push_back(suffix == "-" ? "" : suffix);
        listed.push_back(picture);
    }
    return listed;
}

// W3C's relative luminance and contrast ratio.
double Luminance(std::uint32_t color) {
    const auto part = [color](int shift) {
        const double value = (color >> shift & 0xFF) / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(16) + 0.7152 * part(8) + 0.0722 * part(0);
}

double Contrast(std::uint32_t a, std::uint32_t b) {
    const auto [dark, light] = std::minmax({Luminance(a), Luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

// The weakest contrast of the palette's colours inside the edges against the one that covers most. Edges of
// lines are mixed and do not count. 0 when there is nothing to be seen.
double IconContrast(const Bmp& bmp, int inset, std::uint32_t ground, const std::set<std::uint32_t>& palette) {
    std::map<std::uint32_t, int> counts;
    for (int y = inset; y < bmp.height - inset; ++y) {
        for (int x = inset; x < bmp.width - inset; ++x) {
            const std::uint32_t color = bmp.At(x, y) == magenta ? ground : bmp.At(x, y);
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

    const fs::path pictures = Pictures(GetParam());
    const KeyFile palette = KeyFile::Parse(test::FileContent((pictures / "palette.txt").string()));
};

TEST_P(SkinTest, HasEveryPictureThatScreensAreMadeOf) {
    const struct {
        const char* directory;
        const char* names;
    } needed[] = {
        {"", "Radio RadioSel SRadio SRadioSel Check CheckSel Radio1 RadioSel1"},
        {"MainInterface",
         "MainInterface1 MainInterface2 MainInterface3 KeyboardSel ShortMessageSel SettingSel "
         "CallRegisterSel "
         "CallBookSel Redail RedailSel WinwapSel NetWorkSel HangupSel SoundSel Receiver ReceiverSel"},
        {"Signal",
         "SignalLevel0 SignalLevel1 SignalLevel2 SignalLevel3 SignalLevel4 SignalLevel5 DataClosed "
         "DataDialling DataOpen"},
        {"Keyboard",
         "Back EmptyButton EmptyButtonSel Backspace BackspaceSel Dial DialSel DialDisable DialReturn "
         "DialReturnSel"},
        {"Other",
         "Exit ExitSel CallInBack Accept AcceptSel Reject RejectSel PromptDlgBack MessageCallrecordInterface "
         "Key KeySel KeyDisable Delete DeleteSel DeleteDisable DelMsm DelMsmSel DelMsmDis MsmOpen MsmOpenSel "
         "MsmOpenDis BuildMsm BuildMsmSel BuildMsmDis GroupBlackList Reply ReplySel ReplyDisable MsmExit "
         "MsmExitSel MsmExitDisable SearchItem SearchItemSel SearchItemDis Fixed FixedSel FixedDisable Send "
         "SendSel SendDisable Phrase Ok OkSel Quit QuitSel SoundAdd SoundAddSel SoundAddDisable SoundSub "
         "SoundSubSel SoundSubDisable SmsSet SmsSetSel SmsSetDisable NetworkSet NetworkSetSel "
         "NetworkSetDisable"},
        {"Ussd",
         "NumberBack Empty EmptySel Confirm ConfirmSel NumberClean NumberCleanSel NumberReturn "
         "NumberReturnSel UssdBack Reply ReplySel Return ReturnSel"},
        {"WarnBack", "DeskWarn Ok OkSel Cancel CancelSel"},
        {"Scrollbar",
         "VerticalScrollBarChannel VerticalScrollBarUpArrow VerticalScrollBarDownArrow "
         "VerticalScrollBarUpArrowSel VerticalScrollBarDownArrowSel"},
    };
    for (const auto& [directory, names] : needed) {
        std::istringstream words(names);
        for (std::string name; words >> name;)
            EXPECT_TRUE(fs::exists(File((fs::path(directory) / name).string()))) << directory << " " << name;
    }
}

TEST_P(SkinTest, PicturesAreAsTheReadmeListsThem) {
    std::size_t count = 0;
    for (const Listed& listed : ListedPictures()) {
        std::set<std::vector<std::uint32_t>> looks;
        for (const std::string& suffix : listed.suffixes) {
            SCOPED_TRACE(listed.name + suffix);
            ASSERT_TRUE(fs::exists(File(listed.name + suffix)));
            const Bmp bmp = Bmp::Read(File(listed.name + suffix));
            EXPECT_EQ(std::to_string(bmp.width) + " x " + std::to_string(bmp.height), listed.size);
            EXPECT_EQ(bmp.bits, 24);
            EXPECT_EQ(bmp.Has(magenta), listed.keyed);
            EXPECT_TRUE(looks.insert(bmp.pixels).second || listed.name == "MainInterface/Badge")
                << "looks like another state";
            ++count;
        }
    }
    const auto files = fs::recursive_directory_iterator(pictures);
    EXPECT_EQ(count, static_cast<std::size_t>(
                         std::count_if(begin(files), end(files),
                                       [](const auto& file) { return file.path().extension() == ".bmp"; })))
        << "pictures that are not listed";
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
            const Bmp bmp = Bmp::Read(File(listed.name + suffix));
            const int inset = bmp.width == 200 ? 16 : bmp.width == bmp.height ? bmp.width / 9 : 9;
            const std::uint32_t ground = Color(suffix == "Sel" ? "pressed" : "well");
            const bool isOff = suffix.find("Dis") != std::string::npos;
            EXPECT_GE(IconContrast(bmp, listed.keyed ? 0 : inset, ground, colors), isOff ? 3 : 4.5)
                << listed.name << suffix;
            ++seen;
        }
    }
    EXPECT_GT(seen, 100);
}

TEST_P(SkinTest, TheArrowHasTheColourOfTheScrollBar) {
    const std::uint32_t fill = Bmp::Read(File("Scrollbar/VerticalScrollBarUpArrow")).At(13, 14);
    EXPECT_EQ(fill, Color("thumb"));
    EXPECT_GE(Contrast(fill, Bmp::Read(File("Scrollbar/VerticalScrollBarChannel")).At(0, 0)), 3);
}

TEST_P(SkinTest, IsMadeOfTheSameBytesEachTime) {
    test::ScratchDirectory scratch;
    const std::string command = std::string(VARKEL_MAKE_SKIN " " VARKEL_SKIN "/") + GetParam() +
                                ".txt " VARKEL_SKIN "/icons " + (scratch / "skin");
    ASSERT_EQ(std::system(command.c_str()), 0);
    const fs::path made = scratch / "skin";
    for (const auto& file : fs::recursive_directory_iterator(made)) {
        if (!file.is_regular_file()) continue;
        const fs::path built =
            fs::path(VARKEL_ASSETS) / (std::string("skin-") + GetParam()) / fs::relative(file.path(), made);
        EXPECT_EQ(test::FileContent(file.path().string()), test::FileContent(built.string())) << built;
    }
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
