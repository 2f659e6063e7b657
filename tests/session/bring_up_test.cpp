// The module's whole life on the simulated unit, in virtual time.
#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bring_up_bar.h"
#include "tests/support/session_bench.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(BringUp, SendsExactlyTheRequiredSequence) {
    SessionBench bench;
    bench.OpenModule();
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle);
    bench.RunFor(1000);

    std::vector<std::string> sent;
    std::vector<std::string> driven;
    for (const std::string& line : bench.unit.TakeTrace()) {
        const bool repeats = !sent.empty() && sent.back() == line && (line == "AT+CSQ" || line == "AT+CPIN?");
        if (!repeats) (line.starts_with("AT") ? sent : driven).push_back(line);
    }
    EXPECT_THAT(driven,
                ElementsAre("RequireDisableKeySuspend 0", "RequireDisableAutoSuspend 0", "SetTmcPower 1",
                            "Set3GPower 1", "ReleaseDisableKeySuspend 0", "ReleaseDisableAutoSuspend 0"));
    EXPECT_THAT(
        sent,
        ElementsAre("AT+URCIND=1", "AT+MODODR=2", "AT+IPR=115200", "AT+CPIN?", "AT+CSQ", "AT+CSCS=\"GSM\"",
                    "AT+CSCA?", "AT+CSCA=\"+8613800100500\"", "AT+CPMS=\"SM\",\"SM\",\"SM\"", "AT+CMGF=0",
                    "AT+CNMI=2,1", "AT+CLIP=1", "AT+SIDET=0", "AT+ECHO=8,512", "AT+ECHO=9,60",
                    "AT+ECHO=12,10000", "AT+ECHO=16,18000", "AT+ECHO=17,3000", "AT+ECHO=19,300",
                    "AT+ECHO=20,300", "AT+ECHO=21,1024", "AT+ECHO=22,512", "AT+ECHO=23,512", "AT+ECHO=27,900",
                    "AT+ECHO=28,13000", "AT+CSCS=\"UCS2\"", "AT+CPBS = \"SM\"", "AT+CPBW=?", "AT+CPBS?",
                    "AT+CIMI", "AT+GSN", "AT+CGDCONT=1,\"IP\",\"CMNET\"", "AT+CSQ", "AT+CSCS=\"GSM\""));

    EXPECT_EQ(bench.dialog->State().m_strImsi.Get(), "460001234567890");
    EXPECT_EQ(bench.dialog->State().m_strImei.Get(), "867959030000017");
    EXPECT_EQ(bench.registry.Value("Software\\QXGprsSim", "IMSI")->bytes.size(), 31u);
    EXPECT_EQ(Settings(bench.registry).ReadOpenFlag(), 1u);
    EXPECT_EQ(Settings(bench.registry).ReadDword("GPRS\\NetworkMode", "NetworkMode"), 2u);
    EXPECT_THAT(bench.screens.Shown(), Contains("status IDS_INITING"));
    EXPECT_THAT(bench.screens.Shown(), Contains("status IDS_SEARCHING"));
    EXPECT_EQ(bench.unit.SuspendLocks(), 0);
}

TEST(BringUp, TakesItsPausesTheModemsTimeAndLittleMore) {
    SessionBench bench;
    bench.Start();
    bench.RunUntil([&] { return bench.unit.Count("Set3GPower 1") == 1; }, 10'000);
    const std::uint64_t powered = bench.runtime.Elapsed();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    const std::uint64_t took = bench.runtime.Elapsed() - powered;

    EXPECT_LE(took, BringUpBar({}));
    EXPECT_GE(took, BringUpBar({}) * 95 / 100) << "no required pause was left out";
}

// A refused question is answered as well, and not by the module's answer to the next one.
TEST(BringUp, WaitsForTheImsiOnlyAsLongAsTheModuleOwesIt) {
    struct Row {
        std::vector<const char*> world;
        const char* imsi;
        Ticks longest;  // from the last question on
    };
    const Row rows[] = {
        {{"late 8s"}, "460001234567890", 14'000},
        {{"sim out"}, "", 3000},
        {{"time reply 0s", "time sim-reply 0s", "sim out"}, "", 5000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.world.front());
        SessionBench bench;
        bench.Start();
        ASSERT_TRUE(bench.RunUntil([&] { return bench.unit.Count("AT+CPBS?") == 1; }, 60'000));
        for (const char* command : row.world)
            EXPECT_EQ(bench.unit.Command(command), "");
        ASSERT_TRUE(bench.RunUntil([&] { return bench.unit.Count("AT+GSN") == 1; }, 20'000));
        const std::uint64_t asked = bench.runtime.Elapsed();
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        EXPECT_EQ(bench.dialog->State().m_strImsi.Get(), row.imsi);
        EXPECT_EQ(bench.screens.Count("warn 38"), *row.imsi == '\0' ? 1 : 0);
        EXPECT_LE(bench.runtime.Elapsed() - asked, row.longest);
    }
}

struct Failure {
    const char* name;
    std::vector<const char*> world;  // commands before the start
    sim::UnitConfig config;
    const char* warning;
    const char* logged;
};

TEST(BringUp, EndsInOrderWhateverFails) {
    sim::UnitConfig neverReady;
    neverReady.modem.indication = sim::StartIndication::Never;
    sim::UnitConfig readyAfterThree;
    readyAfterThree.modem.indication = sim::StartIndication::ThreeAlthoughReady;
    sim::UnitConfig slowBoot;
    slowBoot.modem.times.boot = 60'000;
    const Failure failures[] = {
        {"no SIM", {"sim out"}, {}, "warn 15", "--fail---!bSimIn--"},
        {"no power-up", {}, slowBoot, "warn 30", "--fail---open power failed--"},
        {"never ready", {}, neverReady, "warn 16", ""},
        {"SIM in bad contact", {}, readyAfterThree, "warn 22", "[BTNEV]SIM no connect well!"},
        {"no network", {"network off"}, {}, "warn 16", "--fail---overtime--"},
        {"signal too weak", {"signal 4"}, {}, "warn 16", "--fail---overtime--"},
        {"signal unknown", {"signal 99"}, {}, "warn 16", "--fail---overtime--"},
    };
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.name);
        SessionBench bench(1, failure.config);
        for (const char* command : failure.world)
            bench.unit.Command(command);
        Settings(bench.registry).WriteAutoOpenFlag(1);
        bench.Start("");
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        bench.RunFor(5000);
        EXPECT_EQ(bench.screens.Count(failure.warning), 1);
        EXPECT_THAT(bench.LogContent(), HasSubstr(failure.logged));
        EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
        EXPECT_EQ(Settings(bench.registry).ReadOpenFlag(), 0u);
        EXPECT_EQ(bench.unit.SuspendLocks(), 0);
        EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 1);
        const auto shown = bench.screens.Shown();
        EXPECT_THAT(*std::find_if(shown.rbegin(), shown.rend(),
                                  [](const std::string& line) { return line.starts_with("signal "); }),
                    "signal 0");
        EXPECT_FALSE(bench.serial.Open());
        EXPECT_EQ(bench.windows.CountPosted("3G_OPEN_END 0 0"), 1);
    }
}

struct CodeDialogue {
    const char* name;
    std::vector<const char*> world;
    std::vector<std::pair<const char*, const char*>> typed;
    std::vector<const char*> asked;
    std::vector<const char*> sent;
    bool opens;
};

bool CarriesCode(const std::string& line) {
    return line.starts_with("AT+CLCK=") || line.starts_with("AT+CPIN=");
}

TEST(SimUnlock, AsksForEachCodeAndSendsWhatWasTypedOnce) {
    const CodeDialogue dialogues[] = {
        {"PIN", {"pin 1234"}, {{"1234", ""}}, {"ask pin:"}, {"AT+CLCK=\"SC\",0,\"1234\""}, true},
        {"wrong PIN, then right",
         {"pin 1234"},
         {{"9999", ""}, {"1234", ""}},
         {"ask pin:", "ask pin:"},
         {"AT+CLCK=\"SC\",0,\"9999\"", "AT+CLCK=\"SC\",0,\"1234\""},
         true},
        {"refused entries stay in the dialog",
         {"pin 1234"},
         {{"12", ""}, {"123456789", ""}, {"12a4", ""}, {"1234", ""}},
         {"ask pin:"},
         {"AT+CLCK=\"SC\",0,\"1234\""},
         true},
        {"three wrong PINs lead to the PUK",
         {"pin 1234"},
         {{"1111", ""}, {"2222", ""}, {"3333", ""}, {"12345678", "43 21"}},
         {"ask pin:", "ask pin:", "ask pin:", "ask puk:pin:"},
         {"AT+CLCK=\"SC\",0,\"1111\"", "AT+CLCK=\"SC\",0,\"2222\"", "AT+CLCK=\"SC\",0,\"3333\"",
          "AT+CPIN=12345678,4321"},
         true},
        {"PUK", {"puk 12345678"}, {{"12345678", "1234"}}, {"ask puk:pin:"}, {"AT+CPIN=12345678,1234"}, true},
        {"PUK without a new PIN is refused",
         {"puk 12345678"},
         {{"12345678", ""}, {"12345678", "1234"}},
         {"ask puk:pin:"},
         {"AT+CPIN=12345678,1234"},
         true},
        {"PUK2",
         {"ask puk2 87654321"},
         {{"87654321", "5678"}},
         {"ask puk2:pin2:"},
         {"AT+CPIN=87654321,5678"},
         true},
    };
    for (const CodeDialogue& dialogue : dialogues) {
        SCOPED_TRACE(dialogue.name);
        SessionBench bench;
        EXPECT_EQ(bench.unit.Command("imsi 460009999900000"), "") << "shares no digits with the codes";
        for (const char* command : dialogue.world) {
            EXPECT_EQ(bench.unit.Command(command), "");
        }
        for (const auto& [first, second] : dialogue.typed)
            bench.screens.Type(first, second);
        bench.OpenModule();
        EXPECT_EQ(bench.dialog->State().MainScreenMode == ScreenMode::Idle, dialogue.opens);

        std::vector<std::string> asked;
        for (const std::string& line : bench.screens.Shown()) {
            if (line.starts_with("ask ")) asked.push_back(line);
        }
        EXPECT_THAT(asked, testing::ElementsAreArray(dialogue.asked));
        std::vector<std::string> sent;
        for (const std::string& line : bench.unit.TakeTrace()) {
            if (CarriesCode(line)) sent.push_back(line);
        }
        EXPECT_THAT(sent, testing::ElementsAreArray(dialogue.sent));
        const std::string log = bench.LogContent();
        for (const auto& [first, second] : dialogue.typed) {
            if (std::string_view(first).size() < 8) continue;
            EXPECT_THAT(log, Not(HasSubstr(first))) << "no code in the log";
        }
    }
}

// Codes that the required facility "SC" does not open: the question comes again, and a cancel ends it.
TEST(SimUnlock, AsksAgainUntilTheUserGivesUp) {
    const std::pair<const char*, const char*> kinds[] = {{"ask pin2 5678", "ask pin2:"},
                                                         {"ask ph-sim 12341234", "ask PH-SIM pin:"},
                                                         {"ask ph-net 43214321", "ask PH-NET pin:"}};
    for (const auto& [command, question] : kinds) {
        SCOPED_TRACE(command);
        SessionBench bench;
        bench.unit.Command(command);
        bench.screens.Type("0000");
        bench.screens.TypeCancel();
        bench.OpenModule();
        bench.RunFor(3000);
        EXPECT_EQ(bench.screens.Count(question), 2);
        EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
        EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 1);
    }
}

TEST(SimUnlock, NeverSendsACodeByItselfWhateverTheLineDoes) {
    for (const char* fault : {"late 2s", "double 0.3", "lose 0.3", "split 3", "noise 0.01"}) {
        for (std::uint64_t seed = 1; seed <= 20; ++seed) {
            SessionBench bench(seed);
            bench.unit.Command("pin 1234");
            bench.unit.Command(fault);
            bench.screens.Type("9999");
            bench.Start("");
            bench.dialog->OpenModule();
            bench.RunFor(60'000);
            EXPECT_LE(bench.unit.Count("AT+CLCK=\"SC\",0,\"9999\""), 1) << fault << ", seed " << seed;
        }
    }
}

TEST(ModuleControl, GivesUpAtTheUsersWordAndQuitsInEveryStep) {
    for (Ticks step = 0; step <= 70; ++step) {
        const Ticks when = step * 350;
        SessionBench bench(step + 1);
        bench.unit.Command("pin 1234");
        if (step % 4 < 2) bench.screens.Type("1234");
        bench.Start("");
        bench.dialog->OpenModule();
        bench.RunFor(when);
        const std::uint64_t start = bench.runtime.Elapsed();
        if (step % 2 == 1 && !bench.OpenEnded()) {
            bench.dialog->CancelOpen();
            ASSERT_TRUE(bench.RunUntil([&] { return bench.OpenEnded(); }, 2500))
                << "cancelled after " << when;
            bench.RunFor(5000);
            EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
        } else {
            bench.Quit();
            EXPECT_LE(bench.runtime.Elapsed() - start, 5000u) << "quit after " << when;
        }
        EXPECT_EQ(bench.unit.SuspendLocks(), 0);
        EXPECT_FALSE(bench.serial.Open());
        EXPECT_GE(bench.unit.Count("Set3GPower 0"), bench.unit.Count("Set3GPower 1"));
        EXPECT_EQ(Settings(bench.registry).ReadOpenFlag(), 0u);
    }
}

TEST(ModuleControl, ShutsDownInTheRequiredOrder) {
    SessionBench bench;
    bench.OpenModule();
    bench.unit.TakeTrace();
    bench.dialog->CloseModule();
    bench.RunFor(10'000);
    EXPECT_THAT(bench.unit.TakeTrace(), ElementsAre("SetTmcPower 0", "Set3GPower 0"));
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
    EXPECT_FALSE(bench.serial.Open());
    bench.dialog->CloseModule();
    bench.RunFor(30'000);
    EXPECT_THAT(bench.unit.TakeTrace(), ElementsAre()) << "a closed module is left alone, and not polled";
    bench.OpenModule();
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle) << "and can be opened again";
}

TEST(ModuleControl, ComesBackAfterALostUsbLink) {
    for (const char* loss : {"module restart", "vanish", "usb down"}) {
        SCOPED_TRACE(loss);
        SessionBench bench;
        bench.OpenModule();
        bench.RunFor(3000);
        bench.unit.Command(loss);
        ASSERT_TRUE(bench.RunUntil([&] { return bench.screens.Count("warn 18") == 1; }, 15'000));
        EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
        bench.unit.Command("appear");
        bench.unit.Command("usb up");
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle);
        EXPECT_EQ(bench.screens.Count("warn 18"), 1);
    }
}

TEST(ModuleControl, TriesThreeTimesToComeBackAndNoMore) {
    SessionBench bench;
    bench.OpenModule();
    bench.unit.Command("usb down");
    bench.RunFor(600'000);
    EXPECT_EQ(bench.unit.Count("Set3GPower 1"), 4) << "the first opening and three attempts";
    EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 4);
    EXPECT_EQ(bench.screens.Count("warn 18"), 1);
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
}

TEST(StartUp, RestartsAUnitWhoseModuleIsOnAlready) {
    SessionBench bench;
    bench.unit.Command("module on");
    bench.Start("");
    EXPECT_THAT(bench.notices.Boxes(), ElementsAre("|Open 3G failed,you should restart machine!"));
    EXPECT_EQ(bench.unit.Restarts(), 1);
}

TEST(StartUp, ClearsWhatAnEarlierRunLeft) {
    SessionBench bench;
    Settings(bench.registry).WriteOpenFlag(1);
    {
        CGSMData earlier(bench.objects, bench.log);
        earlier.SetConnectionStatus(ConnectionStatus::Up);
    }
    bench.Start("");
    EXPECT_EQ(Settings(bench.registry).ReadOpenFlag(), 0u);
    const auto block = bench.objects.CreateFileMapping("SAFE_MEM_DATA_FILE", 1032);
    std::uint32_t words[2];
    std::memcpy(words, block->MapViewOfFile().data(), sizeof words);
    EXPECT_EQ(words[0], static_cast<std::uint32_t>(bench.windows.FindWindow("3Gwindow")));
    EXPECT_EQ(words[1], 0u);
    EXPECT_TRUE(bench.files.Exists("NandFlash\\System\\Phone"));
    EXPECT_EQ(bench.screens.Count("place 0"), 1);
    bench.RunFor(200);
    EXPECT_EQ(bench.screens.Count("status line shown"), 1);
    bench.RunFor(5000);
    EXPECT_EQ(bench.unit.Count("Set3GPower 1"), 0) << "nobody asked to open the module";
}

TEST(StartUp, InTheBackgroundEndsTheProgramWhenTheModuleDoesNotOpen) {
    SessionBench bench;
    bench.unit.Command("sim out");
    bench.Start("1");
    EXPECT_EQ(bench.screens.Count("place 2"), 1);
    bench.RunFor(20'000);
    EXPECT_TRUE(bench.loop.Quitting());
    EXPECT_EQ(bench.windows.CountPosted("3Gwindow_QUIT 0 0"), 1);
}

TEST(StartUp, LeavesTheScreenByTheStateOfTheModule) {
    SessionBench bench;
    bench.Start("1");
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    bench.dialog->HideOrQuit();
    EXPECT_EQ(bench.windows.CountPosted("3Gwindow_HIDE 0 0"), 1);
    EXPECT_EQ(bench.screens.Count("place 3"), 1);
    bench.RunFor(1000);
    bench.unit.TakeTrace();
    bench.RunFor(30'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 0) << "the poll stops while the window is hidden";
}

}  // namespace
}  // namespace varkel::test
