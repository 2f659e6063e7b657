// Watching an open module: the poll, its levels, and what no answer means.
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

TEST(SignalLevels, AreCutWhereTheTablesSay) {
    const int levels[][3] = {{0, 0, 1},  {3, 0, 1},  {4, 1, 1},  {5, 1, 1},  {7, 1, 1},
                             {8, 1, 2},  {9, 1, 2},  {10, 2, 2}, {12, 2, 2}, {13, 2, 3},
                             {15, 2, 3}, {16, 3, 3}, {20, 3, 3}, {21, 3, 4}, {22, 4, 4},
                             {27, 4, 4}, {28, 5, 4}, {31, 5, 4}, {99, 0, 1}, {-1, 0, 1}};
    for (const auto& [value, icon, broadcast] : levels) {
        EXPECT_EQ(IconLevel(value), icon) << value;
        EXPECT_EQ(BroadcastLevel(value), broadcast) << value;
    }
    EXPECT_EQ(SignalValue(""), 0);
    EXPECT_EQ(SignalValue("18"), 18);
}

struct OpenModule : testing::Test, OpenBench {
    std::string Csq() { return std::string(dialog->State().m_szCsq.Get().View()); }
};

TEST_F(OpenModule, IsPolledEveryTenSecondsAndTellsTheUnit) {
    Happen("signal 12", 100'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 10);
    EXPECT_EQ(windows.CountPosted("UM_QX_SIGNALSTAT 2 0"), 10);
    EXPECT_EQ(Csq(), "12");
    Happen("signal 31", 11'000);
    EXPECT_EQ(screens.Shown().back(), "signal 5");
    EXPECT_EQ(windows.CountPosted("UM_QX_SIGNALSTAT 4 0"), 1);
}

TEST_F(OpenModule, ReadsAtMostTwoDigitsOfTheAnswer) {
    const std::pair<std::string, const char*> answers[] = {{"+CSQ: 5,99", "5"},    {"+CSQ: 18,99", "18"},
                                                           {"+CSQ: 187,99", "18"}, {"+CSQ: x1,99", ""},
                                                           {"+CSQ:", ""},          {"+CSQ: -1", ""}};
    for (const auto& [answer, value] : answers) {
        Happen("urc " + answer, 300);
        EXPECT_EQ(Csq(), value) << answer;
    }
}

TEST_F(OpenModule, IsAskedAgainWhileItIsSilentAndGoesOnWithItsAnswer) {
    Happen("late 9s", 20'000);
    EXPECT_GE(unit.Count("AT+CSQ"), 4) << "again whenever the last command is older than two seconds";
    EXPECT_LE(unit.Count("AT+CSQ"), 9);
    Happen("late 0s", 20'000);
    unit.TakeTrace();
    RunFor(50'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 5) << "back to once in ten seconds";
}

TEST_F(OpenModule, TakesNewsOfTheSim) {
    Happen("urc +CSMINS: 1,0", 300);
    EXPECT_EQ(dialog->State().m_simPresence, SimPresence::Absent);
    Happen("urc +CSMINS: 1", 300);
    EXPECT_EQ(dialog->State().m_simPresence, SimPresence::Present);
    Happen("urc +CPIN: NOT READY", 300);
    EXPECT_EQ(screens.Count("warn 15"), 1);
    EXPECT_EQ(dialog->State().m_nCpinState, SimState::Ready) << "unchanged";
    Happen("urc NO DIALTONE", 300);
    EXPECT_EQ(screens.Count("warn 11"), 1);
}

TEST_F(OpenModule, EndsADialAndAHangUpThatGetNoResult) {
    CallControl& calls = dialog->Calls();
    Happen("lose 1");
    ASSERT_TRUE(calls.Dial("13800138000"));
    RunFor(58'000);
    EXPECT_TRUE(calls.Busy());
    RunFor(5000);
    EXPECT_FALSE(calls.Busy());
    EXPECT_THAT(LogContent(), HasSubstr("[BTNEV]OnCallHooked"));

    Arrange({"calm", "hangup"});
    RunFor(15'000);
    ASSERT_TRUE(calls.Dial("10000"));
    RunFor(5000);
    Happen("lose 1");
    calls.HangUp();
    RunFor(9000);
    EXPECT_THAT(LogContent(), Not(HasSubstr("hang-up: no final result")));
    RunFor(3000);
    EXPECT_THAT(LogContent(), HasSubstr("hang-up: no final result"));
}

TEST_F(OpenModule, BringsItsWindowBackWhenAStartedProgramHasEnded) {
    for (int round = 1; round <= 2; ++round) {
        dialog->State().g_bSilentOpen = true;
        dialog->Programs().Launch("\\ResidentFlash2\\bin\\IE\\IE.exe");
        EXPECT_EQ(screens.Count("place 3"), round) << "hidden while the program runs";
        RunFor(5000);
        EXPECT_EQ(screens.Count("place 1"), round - 1);
        processes.started.back()->TerminateProcess();
        RunFor(1000);
        EXPECT_EQ(screens.Count("place 1"), round);
        EXPECT_FALSE(dialog->State().g_bSilentOpen);
    }
}

}  // namespace
}  // namespace varkel::test
