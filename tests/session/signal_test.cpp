// Watching an open module: the poll, its levels, and what no answer means.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(SignalLevels, AreCutWhereTheTablesSay) {
    struct Level {
        int value;
        int icon;
        int broadcast;
    };
    const Level levels[] = {{0, 0, 1},  {3, 0, 1},  {4, 1, 1},  {5, 1, 1},  {7, 1, 1},
                            {8, 1, 2},  {9, 1, 2},  {10, 2, 2}, {12, 2, 2}, {13, 2, 3},
                            {15, 2, 3}, {16, 3, 3}, {20, 3, 3}, {21, 3, 4}, {22, 4, 4},
                            {27, 4, 4}, {28, 5, 4}, {31, 5, 4}, {99, 0, 1}};
    for (const Level& level : levels) {
        EXPECT_EQ(IconLevel(level.value), level.icon) << level.value;
        EXPECT_EQ(BroadcastLevel(level.value), level.broadcast) << level.value;
    }
    EXPECT_EQ(IconLevel(-1), 0);
    EXPECT_EQ(SignalValue(""), 0);
    EXPECT_EQ(SignalValue("18"), 18);
}

struct OpenModule : testing::Test {
    std::string Csq() { return std::string(bench.dialog->State().m_szCsq.Get().View()); }

    OpenBench bench;
};

TEST_F(OpenModule, IsPolledEveryTenSecondsAndTellsTheUnit) {
    bench.unit.Command("signal 12");
    bench.RunFor(100'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 10);
    EXPECT_EQ(bench.windows.CountPosted("UM_QX_SIGNALSTAT 2 0"), 10);
    EXPECT_EQ(Csq(), "12");
    bench.unit.Command("signal 31");
    bench.RunFor(11'000);
    EXPECT_EQ(bench.screens.Shown().back(), "signal 5");
    EXPECT_EQ(bench.windows.CountPosted("UM_QX_SIGNALSTAT 4 0"), 1);
}

TEST_F(OpenModule, ReadsAtMostTwoDigitsOfTheAnswer) {
    const std::pair<const char*, const char*> answers[] = {{"+CSQ: 5,99", "5"},    {"+CSQ: 18,99", "18"},
                                                           {"+CSQ: 187,99", "18"}, {"+CSQ: x1,99", ""},
                                                           {"+CSQ:", ""},          {"+CSQ: -1", ""}};
    for (const auto& [answer, value] : answers) {
        bench.unit.Command(std::string("urc ") + answer);
        bench.RunFor(300);
        EXPECT_EQ(Csq(), value) << answer;
    }
}

TEST_F(OpenModule, IsAskedAgainWhileItIsSilentAndGoesOnWithItsAnswer) {
    bench.unit.Command("late 9s");
    bench.RunFor(20'000);
    EXPECT_GE(bench.unit.Count("AT+CSQ"), 4) << "again whenever the last command is older than two seconds";
    EXPECT_LE(bench.unit.Count("AT+CSQ"), 9);
    bench.unit.Command("late 0s");
    bench.RunFor(20'000);
    bench.unit.TakeTrace();
    bench.RunFor(50'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 5) << "back to once in ten seconds";
}

TEST_F(OpenModule, GivesUpTheDataLinkAfterThreeWeakPollsAndDialsAboveSeven) {
    bench.unit.Command("signal 4");
    bench.RunFor(20'500);
    EXPECT_EQ(bench.LogContent().find("[OnPoorSignal]"), std::string::npos);
    bench.RunFor(30'000);
    std::string log = bench.LogContent();
    ASSERT_THAT(log, HasSubstr("[OnPoorSignal]"));
    EXPECT_EQ(log.find("[OnPoorSignal]"), log.rfind("[OnPoorSignal]")) << "once";
    EXPECT_EQ(bench.dialog->State().m_nLowSignalCount, 3);

    const std::size_t opened = log.rfind("[OpenNet]");
    bench.unit.Command("signal 7");
    bench.RunFor(20'000);
    EXPECT_EQ(bench.LogContent().rfind("[OpenNet]"), opened) << "7 is not enough";
    bench.unit.Command("signal 8");
    bench.RunFor(17'000);
    EXPECT_GT(bench.LogContent().rfind("[OpenNet]"), opened);
    EXPECT_EQ(bench.dialog->State().m_nLowSignalCount, 0);
}

TEST_F(OpenModule, TakesNewsOfTheSim) {
    bench.unit.Command("urc +CSMINS: 1,0");
    bench.RunFor(300);
    EXPECT_EQ(bench.dialog->State().m_simPresence, SimPresence::Absent);
    bench.unit.Command("urc +CSMINS: 1");
    bench.RunFor(300);
    EXPECT_EQ(bench.dialog->State().m_simPresence, SimPresence::Present);
    bench.unit.Command("urc +CPIN: NOT READY");
    bench.RunFor(300);
    EXPECT_EQ(bench.screens.Count("warn 15"), 1);
    EXPECT_EQ(bench.dialog->State().m_nCpinState, SimState::Ready) << "unchanged";
    bench.unit.Command("urc NO DIALTONE");
    bench.RunFor(300);
    EXPECT_EQ(bench.screens.Count("warn 11"), 1);
}

TEST_F(OpenModule, EndsADialAndAHangUpThatGetNoResult) {
    CallControl& calls = bench.dialog->Calls();
    bench.unit.Command("lose 1");
    ASSERT_TRUE(calls.Dial("13800138000"));
    bench.RunFor(58'000);
    EXPECT_TRUE(calls.Busy());
    bench.RunFor(5000);
    EXPECT_FALSE(calls.Busy());
    EXPECT_THAT(bench.LogContent(), HasSubstr("[BTNEV]OnCallHooked"));

    bench.unit.Command("calm");
    bench.unit.Command("hangup");
    bench.RunFor(15'000);
    ASSERT_TRUE(calls.Dial("10000"));
    bench.RunFor(5000);
    bench.unit.Command("lose 1");
    calls.HangUp();
    bench.RunFor(9000);
    EXPECT_THAT(bench.LogContent(), Not(HasSubstr("hang-up: no final result")));
    bench.RunFor(3000);
    EXPECT_THAT(bench.LogContent(), HasSubstr("hang-up: no final result"));
}

TEST(ProgramWatchTest, BringsTheWindowBackWhenTheProgramHasEnded) {
    SessionBench bench;
    bench.Start("");
    SessionState state;
    Settings settings(bench.registry);
    CATChannel at(bench.runtime, bench.unit, bench.windows, bench.log);
    Session session{bench.platform, state, settings, at, bench.screens};
    ProgramWatch watch(session);
    ASSERT_TRUE(watch.Start());
    for (int round = 1; round <= 2; ++round) {
        state.g_bSilentOpen = true;
        watch.Launch("\\ResidentFlash2\\bin\\IE\\IE.exe");
        EXPECT_EQ(bench.screens.Count("place 3"), round) << "hidden while the program runs";
        bench.RunFor(5000);
        EXPECT_EQ(bench.screens.Count("place 1"), round - 1);
        bench.processes.started.back()->TerminateProcess();
        bench.RunFor(1000);
        EXPECT_EQ(bench.screens.Count("place 1"), round);
        EXPECT_FALSE(state.g_bSilentOpen);
    }
}

}  // namespace
}  // namespace varkel::test
