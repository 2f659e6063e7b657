// What is spoken when a button is pressed.
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

const std::string flash = "\\ResidentFlash2\\bin\\Library\\";
const std::string card = "\\SDMMC\\Library\\";

std::string Init(const std::string& directory) {
    return "init " + directory + "CNPackage.dat " + directory + "ENPackage.dat";
}

struct SpeechTest : testing::Test, SessionBench {
    void PutPackages(const std::string& directory) {
        for (const char* name : {"CNPackage.dat", "ENPackage.dat"})
            files.WriteWhole(directory + name, "");
    }
    // Presses a button with that caption; what the engine is told.
    std::vector<std::string> Press(std::string_view caption) {
        dialog->GetSpeech().Announce(caption);
        return speech.TakeCalls();
    }
};

TEST_F(SpeechTest, StartsWithPackagesInTheFlashAndSpeaksCaptions) {
    PutPackages(flash);
    PutPackages(card);
    Start("");
    EXPECT_THAT(speech.TakeCalls(), ElementsAre(Init(flash), "param 3 500", "param 2 500", "param 1 500"));
    EXPECT_FALSE(registry.Value("Device\\CONFIG", "g_bTTSOpen"));
    EXPECT_THAT(Press("Settings"), ElementsAre("play Settings"));
    EXPECT_TRUE(registry.Value("Device\\CONFIG", "g_bTTSOpen")) << "created with 1";
    EXPECT_THAT(Press("设置"), ElementsAre("play \xC9\xE8\xD6\xC3")) << "in the display code page";
    EXPECT_THAT(Press("a😀"), ElementsAre("play a\x94\x39\xFC\x36")) << "two bytes for each unit";
    EXPECT_THAT(Press("aꀀ"), ElementsAre("play a")) << "of which a character may need more";

    Settings(registry).WriteDword("Device\\CONFIG", "g_bTTSOpen", 0);
    EXPECT_THAT(Press("Settings"), IsEmpty());
    Settings(registry).WriteDword("Device\\CONFIG", "g_bTTSOpen", 1);
    dialog->State().MainScreenMode = ScreenMode::InCall;
    EXPECT_THAT(Press("Settings"), IsEmpty());
    EXPECT_FALSE(dialog->State().m_bAudioDelay);
    Quit();
    dialog.reset();
    EXPECT_THAT(speech.TakeCalls(), ElementsAre("stop", "end"));
}

TEST_F(SpeechTest, TriesAgainWithEachAnnouncementUntilThereIsAnEngine) {
    files.WriteWhole(flash + "CNPackage.dat", "");
    Start("");
    EXPECT_THAT(Press("Settings"), IsEmpty()) << "half a pair is none";
    PutPackages(flash);
    speech.initResult = -1;
    EXPECT_THAT(Press("Settings"), ElementsAre(Init(flash)));
    speech.initResult = 0;
    EXPECT_THAT(Press("Settings"),
                ElementsAre(Init(flash), "param 3 500", "param 2 500", "param 1 500", "play Settings"));
    EXPECT_THAT(Press("Settings"), ElementsAre("play Settings"));
}

TEST_F(SpeechTest, PreparesPackagesOnTheCardAndSpeaksNothing) {
    Start("");
    PutPackages(card);
    Happen("card out");
    EXPECT_THAT(Press("Settings"), ElementsAre("end", "param 3 500", "param 2 500", "param 1 500"));
    EXPECT_THAT(Press("Settings"), IsEmpty());

    dialog->GetSpeech().ShutDown();
    Happen("card in");
    EXPECT_THAT(Press("Settings"),
                ElementsAre("stop", "end", "end", Init(card), "param 3 500", "param 2 500", "param 1 500"));
    EXPECT_THAT(Press("Settings"), IsEmpty());
}

TEST_F(SpeechTest, LetsTheAudioWaitForTheRedialCaption) {
    files.WriteWhole("\\ResidentFlash2\\bin\\Language\\chinese.txt", "[GPRS]\nIDS_REDIALMODE = 重拨\n");
    ASSERT_TRUE(language.Change("chinese"));
    PutPackages(flash);
    Start("");
    speech.TakeCalls();
    EXPECT_THAT(Press("设置"), ElementsAre("play \xC9\xE8\xD6\xC3"));
    EXPECT_FALSE(dialog->State().m_bAudioDelay);
    EXPECT_THAT(Press("重拨"), ElementsAre("play \xB3\xE6\xB2\xA5")) << "a homophone";
    EXPECT_TRUE(dialog->State().m_bAudioDelay);
}

}  // namespace
}  // namespace varkel::test
