// The module's whole life on the simulated unit, in virtual time.
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/open_module.h"
#include "tests/support/bring_up_bar.h"

namespace varkel::test {
namespace {

using testing::IsSupersetOf;

TEST(BringUp, SendsTheRequiredSequenceWithItsPausesAndTakesLittleMore) {
    SessionBench bench;
    bench.Start();
    bench.RunUntil([&] { return bench.unit.Count("Set3GPower 1") == 1; }, 10'000);
    const std::uint64_t powered = bench.runtime.Elapsed();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    EXPECT_LE(bench.runtime.Elapsed() - powered, BringUpBar({}));
    EXPECT_GE(bench.runtime.Elapsed() - powered, BringUpBar({}) * 95 / 100) << "no pause was left out";
    EXPECT_EQ(bench.Mode(), ScreenMode::Idle);
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
    EXPECT_THAT(bench.screens.Shown(), IsSupersetOf({"status IDS_INITING", "status IDS_SEARCHING"}));
    EXPECT_EQ(bench.unit.SuspendLocks(), 0);
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
        bench.Arrange(row.world);
        ASSERT_TRUE(bench.RunUntil([&] { return bench.unit.Count("AT+GSN") == 1; }, 20'000));
        const std::uint64_t asked = bench.runtime.Elapsed();
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        EXPECT_EQ(bench.dialog->State().m_strImsi.Get(), row.imsi);
        EXPECT_EQ(bench.screens.Count("warn 38"), *row.imsi == '\0' ? 1 : 0);
        EXPECT_LE(bench.runtime.Elapsed() - asked, row.longest);
    }
}

TEST(BringUp, EndsInOrderWhateverFails) {
    struct Row {
        std::vector<const char*> world;
        const char* warning;
        const char* logged = "";
        sim::ModemKind kind = sim::ModemKind::Unit;
    };
    const Row rows[] = {
        {{"sim out"}, "warn 15", "--fail---!bSimIn--"},
        {{"time boot 60s"}, "warn 30", "--fail---open power failed--"},
        {{"start-report never"}, "warn 16"},
        {{"start-report always-no-sim"}, "warn 22", "[BTNEV]SIM no connect well!"},
        {{"network off"}, "warn 16", "--fail---overtime--"},
        {{"signal 4"}, "warn 16", "--fail---overtime--"},
        {{"signal 99"}, "warn 16", "--fail---overtime--"},
        {{"time reply 200s"}, "warn 16", "", sim::ModemKind::Standard},
        {{"sim out"}, "warn 16", "", sim::ModemKind::Standard},
        {{"no-sim-answer not-ready", "sim out"}, "warn 15", "", sim::ModemKind::Standard},
    };
    for (const Row& row : rows) {
        sim::UnitConfig config;
        config.modem.kind = row.kind;
        SessionBench bench(1, config);
        const bool own = row.kind == sim::ModemKind::Unit;
        if (own) bench.Arrange(row.world);
        Settings(bench.registry).WriteAutoOpenFlag(1);
        bench.Start("", {.profile = own ? &unitModule : nullptr});
        if (!own) {
            ASSERT_TRUE(bench.RunUntil([&] { return bench.unit.Count("Set3GPower 1") == 1; }, 10'000));
            bench.Arrange(row.world);
        }
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        bench.RunFor(5000);
        ExpectClosed(bench, testing::PrintToString(row.world));
        EXPECT_EQ(bench.screens.Count(row.warning), 1) << row.world.front();
        EXPECT_THAT(bench.LogContent(), HasSubstr(row.logged));
        EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 1) << row.world.front();
        EXPECT_EQ(StartingWith({"signal "}, bench.screens.Shown()).back(), "signal 0");
        EXPECT_EQ(bench.windows.CountPosted("3G_OPEN_END 0 0"), 1) << row.world.front();
    }
}

TEST(SimUnlock, AsksForEachCodeAndSendsWhatWasTypedOnce) {
    struct Row {
        const char* world;
        std::vector<std::pair<const char*, const char*>> typed;
        std::vector<std::string> asked;
        std::vector<std::string> sent;
    };
    const Row rows[] = {
        {"pin 1234",
         {{"12", ""}, {"123456789", ""}, {"12a4", ""}, {"1234", ""}},
         {"ask pin:"},
         {"AT+CLCK=\"SC\",0,\"1234\""}},
        {"pin 1234",
         {{"1111", ""}, {"2222", ""}, {"3333", ""}, {"12345678", "43 21"}},
         {"ask pin:", "ask pin:", "ask pin:", "ask puk:pin:"},
         {"AT+CLCK=\"SC\",0,\"1111\"", "AT+CLCK=\"SC\",0,\"2222\"", "AT+CLCK=\"SC\",0,\"3333\"",
          "AT+CPIN=12345678,4321"}},
        {"puk 12345678",
         {{"12345678", ""}, {"12345678", "1234"}},
         {"ask puk:pin:"},
         {"AT+CPIN=12345678,1234"}},
        {"ask puk2 87654321", {{"87654321", "5678"}}, {"ask puk2:pin2:"}, {"AT+CPIN=87654321,5678"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.typed));
        SessionBench bench;
        bench.Arrange({"imsi 460009999900000", row.world});  // which shares no digits with the codes
        for (const auto& [first, second] : row.typed)
            bench.screens.Type(first, second);
        bench.OpenModule();
        EXPECT_EQ(bench.Mode(), ScreenMode::Idle);
        EXPECT_EQ(StartingWith({"ask "}, bench.screens.Shown()), row.asked);
        EXPECT_EQ(StartingWith({"AT+CLCK=", "AT+CPIN="}, bench.unit.TakeTrace()), row.sent);
        for (const auto& [first, second] : row.typed) {
            if (std::string_view(first).size() < 8) continue;
            EXPECT_THAT(bench.LogContent(), Not(HasSubstr(first))) << "no code in the log";
        }
    }
}

// Codes that the required facility "SC" does not open: the question comes again, and a cancel ends it.
TEST(SimUnlock, AsksAgainUntilTheUserGivesUp) {
    const std::pair<const char*, const char*> rows[] = {{"ask pin2 5678", "ask pin2:"},
                                                        {"ask ph-sim 12341234", "ask PH-SIM pin:"},
                                                        {"ask ph-net 43214321", "ask PH-NET pin:"}};
    for (const auto& [world, question] : rows) {
        SessionBench bench;
        bench.Happen(world);
        bench.screens.Type("0000");
        bench.screens.TypeCancel();
        bench.OpenModule();
        bench.RunFor(3000);
        ExpectClosed(bench, world);
        EXPECT_EQ(bench.screens.Count(question), 2) << world;
    }
}

TEST(SimUnlock, NeverSendsACodeByItselfWhateverTheLineDoes) {
    for (const char* fault : {"late 2s", "double 0.3", "lose 0.3", "split 3", "noise 0.01"}) {
        for (std::uint64_t seed = 1; seed <= 20; ++seed) {
            SessionBench bench(seed);
            bench.Arrange({"pin 1234", fault});
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
        bench.Happen("pin 1234");
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
        } else {
            bench.Quit();
            EXPECT_LE(bench.runtime.Elapsed() - start, 5000u) << "quit after " << when;
        }
        ExpectClosed(bench, "after " + std::to_string(when));
        EXPECT_GE(bench.unit.Count("Set3GPower 0"), bench.unit.Count("Set3GPower 1"));
    }
}

TEST(ModuleControl, ShutsDownInTheRequiredOrder) {
    OpenBench bench;
    bench.dialog->CloseModule();
    bench.RunFor(10'000);
    EXPECT_THAT(bench.unit.TakeTrace(), ElementsAre("SetTmcPower 0", "Set3GPower 0"));
    ExpectClosed(bench, "by the user");
    bench.dialog->CloseModule();
    bench.RunFor(30'000);
    EXPECT_THAT(bench.unit.TakeTrace(), ElementsAre()) << "a closed module is left alone, and not polled";
    bench.OpenModule();
    EXPECT_EQ(bench.Mode(), ScreenMode::Idle) << "and can be opened again";
}

TEST(ModuleControl, ComesBackAfterALostUsbLink) {
    for (const char* loss : {"module restart", "vanish", "usb down"}) {
        SCOPED_TRACE(loss);
        OpenBench bench;
        bench.Happen(loss);
        ASSERT_TRUE(bench.RunUntil([&] { return bench.screens.Count("warn 18") == 1; }, 15'000));
        EXPECT_EQ(bench.Mode(), ScreenMode::Closed);
        bench.Arrange({"appear", "usb up"});
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        EXPECT_EQ(bench.Mode(), ScreenMode::Idle);
        EXPECT_EQ(bench.screens.Count("warn 18"), 1);
    }
}

TEST(ModuleControl, TriesThreeTimesToComeBackAndNoMore) {
    OpenBench bench;
    bench.Happen("usb down", 600'000);
    ExpectClosed(bench, "in the end");
    EXPECT_EQ(bench.unit.Count("Set3GPower 1"), 3);
    EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 4);
    EXPECT_EQ(bench.screens.Count("warn 18"), 1);
}

struct StartUp : testing::Test, SessionBench {};

TEST_F(StartUp, ClearsWhatAnEarlierRunLeft) {
    Settings(registry).WriteOpenFlag(1);
    {
        CGSMData earlier(objects, log);
        earlier.SetConnectionStatus(ConnectionStatus::Up);
    }
    Start("");
    EXPECT_EQ(Settings(registry).ReadOpenFlag(), 0u);
    const auto block = objects.CreateFileMapping("SAFE_MEM_DATA_FILE", 1032);
    std::uint32_t words[2];
    std::memcpy(words, block->MapViewOfFile().data(), sizeof words);
    EXPECT_EQ(words[0], static_cast<std::uint32_t>(windows.FindWindow("3Gwindow")));
    EXPECT_EQ(words[1], 0u);
    EXPECT_TRUE(files.Exists("NandFlash\\System\\Phone"));
    EXPECT_EQ(screens.Count("place 0"), 1);
    RunFor(200);
    EXPECT_EQ(screens.Count("status line shown"), 1);
    RunFor(5000);
    EXPECT_EQ(unit.Count("Set3GPower 1"), 0) << "nobody asked to open the module";
}

TEST_F(StartUp, InTheBackgroundEndsTheProgramWhenTheModuleDoesNotOpen) {
    Happen("sim out");
    Start("1");
    EXPECT_EQ(screens.Count("place 2"), 1);
    RunFor(20'000);
    EXPECT_TRUE(loop.Quitting());
    EXPECT_EQ(windows.CountPosted("3Gwindow_QUIT 0 0"), 1);
}

}  // namespace
}  // namespace varkel::test
