// What is spoken when a button is pressed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/session_bench.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* flash = "\\ResidentFlash2\\bin\\Library\\";
constexpr const char* card = "\\SDMMC\\Library\\";
const std::string initFlash =
    "init \\ResidentFlash2\\bin\\Library\\CNPackage.dat "
    "\\ResidentFlash2\\bin\\Library\\ENPackage.dat";
const std::string initCard = "init \\SDMMC\\Library\\CNPackage.dat \\SDMMC\\Library\\ENPackage.dat";

struct SpeechTest : testing::Test {
    void PutPackages(const std::string& directory) {
        bench.files.WriteWhole(directory + "CNPackage.dat", "");
        bench.files.WriteWhole(directory + "ENPackage.dat", "");
    }
    void Switch(std::uint8_t on) {
        bench.registry.SetValue("Device\\CONFIG", "g_bTTSOpen",
                                {RegistryType::Dword, {std::byte{on}, {}, {}, {}}});
    }
    // Presses a button with that caption; what the engine is told.
    std::vector<std::string> Press(std::string_view caption) {
        bench.dialog->GetSpeech().Announce(caption);
        return bench.speech.TakeCalls();
    }

    SessionBench bench;
};

TEST_F(SpeechTest, StartsWithPackagesInTheFlashAndSpeaksCaptions) {
    PutPackages(flash);
    PutPackages(card);
    bench.Start("");
    EXPECT_THAT(bench.speech.TakeCalls(),
                ElementsAre(initFlash, "param 3 500", "param 2 500", "param 1 500"));
    EXPECT_FALSE(bench.registry.Value("Device\\CONFIG", "g_bTTSOpen"));
    EXPECT_THAT(Press("Settings"), ElementsAre("play Settings"));
    EXPECT_TRUE(bench.registry.Value("Device\\CONFIG", "g_bTTSOpen")) << "created with 1";
    EXPECT_THAT(Press("设置"), ElementsAre("play \xC9\xE8\xD6\xC3")) << "in the display code page";
    EXPECT_THAT(Press("a😀"), ElementsAre("play a\x94\x39\xFC\x36")) << "two bytes for each unit";
    EXPECT_THAT(Press("aꀀ"), ElementsAre("play a")) << "of which a character may need more";

    Switch(0);
    EXPECT_THAT(Press("Settings"), IsEmpty());
    Switch(1);
    bench.dialog->State().MainScreenMode = ScreenMode::InCall;
    EXPECT_THAT(Press("Settings"), IsEmpty());
    EXPECT_FALSE(bench.dialog->State().m_bAudioDelay);
    bench.Quit();
    bench.dialog.reset();
    EXPECT_THAT(bench.speech.TakeCalls(), ElementsAre("stop", "end"));
}

TEST_F(SpeechTest, TriesAgainWithEachAnnouncementUntilThereIsAnEngine) {
    bench.files.WriteWhole("\\ResidentFlash2\\bin\\Library\\CNPackage.dat", "");
    bench.Start("");
    EXPECT_THAT(Press("Settings"), IsEmpty()) << "half a pair is none";
    PutPackages(flash);
    bench.speech.initResult = -1;
    EXPECT_THAT(Press("Settings"), ElementsAre(initFlash));
    bench.speech.initResult = 0;
    EXPECT_THAT(Press("Settings"),
                ElementsAre(initFlash, "param 3 500", "param 2 500", "param 1 500", "play Settings"));
    EXPECT_THAT(Press("Settings"), ElementsAre("play Settings"));
}

TEST_F(SpeechTest, PreparesPackagesOnTheCardAndSpeaksNothing) {
    bench.Start("");
    PutPackages(card);
    bench.unit.Command("card out");
    EXPECT_THAT(Press("Settings"), ElementsAre("end", "param 3 500", "param 2 500", "param 1 500"));
    EXPECT_THAT(Press("Settings"), IsEmpty());

    bench.dialog->GetSpeech().ShutDown();
    bench.unit.Command("card in");
    EXPECT_THAT(Press("Settings"),
                ElementsAre("stop", "end", "end", initCard, "param 3 500", "param 2 500", "param 1 500"));
    EXPECT_THAT(Press("Settings"), IsEmpty());
}

TEST_F(SpeechTest, LetsTheAudioWaitForTheRedialCaption) {
    bench.files.WriteWhole("\\ResidentFlash2\\bin\\Language\\chinese.txt", "[GPRS]\nIDS_REDIALMODE = 重拨\n");
    ASSERT_TRUE(bench.language.Change("chinese"));
    PutPackages(flash);
    bench.Start("");
    bench.speech.TakeCalls();
    EXPECT_THAT(Press("设置"), ElementsAre("play \xC9\xE8\xD6\xC3"));
    EXPECT_FALSE(bench.dialog->State().m_bAudioDelay);
    EXPECT_THAT(Press("重拨"), ElementsAre("play \xB3\xE6\xB2\xA5")) << "a homophone";
    EXPECT_TRUE(bench.dialog->State().m_bAudioDelay);
}

}  // namespace
}  // namespace varkel::test
