// The data link: whose access point, dialling, its states, its test, and every way in which it ends.
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

TEST(AccessPoint, IsThatOfTheFirstOperatorThatServesTheSim) {
    // The operators' codes, of which each one's place is its access point; and the chosen one, "" = none.
    const std::pair<std::vector<const char*>, std::string> rows[] = {
        {{"46001", "46000", "4600"}, "1"}, {{"46001", ""}, "1"},       {{"", "46000"}, "0"},
        {{"460001234567890"}, "0"},        {{"4600012345678901"}, ""}, {{}, ""},
    };
    for (const auto& [codes, chosen] : rows) {
        SessionBench bench;
        std::vector<ISP_Struct> operators;
        for (const char* code : codes)
            operators.push_back(Operator("name", std::to_string(operators.size()).c_str(), code));
        InstallOperators(bench.files, operators);
        Settings settings(bench.registry);
        settings.WriteIsp(Operator("earlier", "earlier", ""));
        bench.OpenModule();
        const bool found = !chosen.empty();
        EXPECT_EQ(bench.dialog->Data().CurrentIsp().szAPN.View(), found ? chosen : "earlier");
        EXPECT_EQ(settings.ReadIsp()->szAPN.View(), found ? chosen : "earlier");
        EXPECT_EQ(bench.screens.Count("warn 38"), found ? 0 : 1);
        EXPECT_EQ(bench.dialUp.Dialled().size(), found ? 1u : 0u);
    }
}

using Result = std::pair<LinkStatus, LinkReason>;

// The result of a test.
Result TestLink(SessionBench& bench) {
    std::optional<LinkResult> result;
    bench.dialog->Data().PingTest(
        [&](LinkResult found) { bench.loop.Post([&result, found] { result = found; }); });
    if (!bench.RunUntil([&] { return result.has_value(); }, 60'000)) return {};
    return {result->status, result->reason};
}

struct Data : testing::Test, OpenBench {
    void Report(RasState state) {
        dialUp.Report(state);
        RunFor(100);
    }
    void Dial() {
        link.OpenNet();
        RunFor(5000);
    }
    bool AtRest() { return !link.Exists() && dialog->State().m_dataState == DataState::Off; }

    DataLink& link = dialog->Data();
};

TEST_F(Data, IsDialledAndHungUpWithItsPauses) {
    ISP_Struct isp = Operator("CMCC", "my.apn", "");
    isp.userName.Assign("\xC3\xFB");  // GB18030
    isp.password.Assign("secret");
    registry.refuseWrites = true;
    EXPECT_FALSE(link.SetISPToReg(isp));
    EXPECT_THAT(notices.Boxes(), ElementsAre("|Failed to set ISP to REG!")) << "used all the same";
    int cleared = screens.Count("status ");
    const auto untilCleared = [&] {
        const std::uint64_t start = runtime.Elapsed();
        ++cleared;
        EXPECT_TRUE(RunUntil([&] { return screens.Count("status ") == cleared; }, 20'000));
        return static_cast<int>(runtime.Elapsed() - start);
    };
    link.RasHangUp();
    EXPECT_NEAR(untilCleared(), 3000, 100);
    link.RasHangUp();
    EXPECT_NEAR(untilCleared(), 2000, 100) << "nothing there";
    link.OpenNet();
    RunFor(1100);
    EXPECT_THAT(Commands(), ElementsAre("AT+CGDCONT=1,\"IP\",\"my.apn\""));
    EXPECT_EQ(dialUp.Dialled().size(), 1u);
    EXPECT_NEAR(untilCleared(), 3100, 200);
    link.OpenNet();
    RunFor(6000);
    ASSERT_EQ(dialUp.Dialled().size(), 2u) << "there is a connection already";
    const RasDialParams params = dialUp.Dialled().back();
    EXPECT_EQ(params.entryName + " " + params.userName + " " + params.password, "connet 名 secret");
    EXPECT_EQ(LogContent().find("secret"), std::string::npos);
}

TEST_F(Data, FollowsItsStates) {
    const std::pair<RasState, DataState> states[] = {
        {RasState::OpenPort, DataState::Dialling},   {RasState::DeviceConnected, DataState::Dialling},
        {RasState::Connected, DataState::Connected}, {RasState::Authenticate, DataState::Dialling},
        {RasState::Connected, DataState::Connected}, {RasState::Disconnected, DataState::Off},
    };
    for (const auto& [state, shown] : states) {
        Report(state);
        EXPECT_EQ(dialog->State().m_dataState, shown) << static_cast<unsigned>(state);
    }
    RunFor(4000);
    EXPECT_TRUE(AtRest());
    EXPECT_EQ(dialUp.hangUps, 1);
    dialUp.Report(RasState::Connected);  // comes when the next one is being dialled
    link.OpenNet();
    runtime.Sleep(5000);
    RunFor(100);
    EXPECT_TRUE(link.Exists());
    EXPECT_FALSE(link.Connected()) << "the old connection's state";
}

TEST_F(Data, IsGivenUpWhenItIsNotThereAfterFourMinutes) {
    Report(RasState::OpenPort);
    RunFor(239'000);
    EXPECT_EQ(dialUp.hangUps, 0);
    RunFor(1500);
    EXPECT_EQ(dialUp.hangUps, 1);
    EXPECT_TRUE(AtRest());
    Dial();
    Report(RasState::OpenPort);
    Report(RasState::Connected);
    RunFor(600'000);
    EXPECT_TRUE(link.Connected());
    EXPECT_EQ(dialUp.hangUps, 1);
}

TEST_F(Data, CanBeDialledAgainAfterARefusal) {
    link.RasHangUp();
    RunFor(5000);
    dialUp.refusal = RasError::Busy;
    Dial();
    EXPECT_EQ(screens.Count("warn 19"), 1);
    EXPECT_TRUE(AtRest());
    dialUp.refusal = RasError::None;
    link.SetISPToReg(Operator("x", "a\"\rATD110;", ""));
    Dial();
    EXPECT_EQ(screens.Count("warn 19"), 2) << "no such access point leaves the program";
    link.SetISPToReg(DefaultIsp());
    Dial();
    EXPECT_TRUE(link.Exists());
}

TEST_F(Data, IsHungUpAfterThreeWeakPollsAndDialledAgainAboveSeven) {
    std::vector<WindowMessage> heard;
    const auto listener = static_cast<std::uint32_t>(
        windows.AddProgram([&heard](const WindowMessage& message) { heard.push_back(message); }));
    Post(WM_USER + 1000, listener);
    RunFor(10'000);
    heard.clear();
    Happen("signal 4", 20'500);
    EXPECT_EQ(dialUp.hangUps, 0);
    RunFor(10'000);
    EXPECT_EQ(dialUp.hangUps, 1);
    Happen("signal 99", 30'000);
    EXPECT_THAT(heard, ElementsAre(WindowMessage{1566, 2, 12}));
    EXPECT_EQ(dialUp.hangUps, 1) << "once";
    EXPECT_EQ(dialog->State().m_nLowSignalCount, 3);
    EXPECT_TRUE(AtRest());
    Happen("signal 7", 20'000);
    EXPECT_EQ(dialUp.Dialled().size(), 1u) << "7 is not enough";
    Happen("signal 8", 17'000);
    EXPECT_EQ(dialUp.Dialled().size(), 2u);
    EXPECT_EQ(dialog->State().m_nLowSignalCount, 0);
    EXPECT_EQ(heard.size(), 1u);
}

TEST_F(Data, IsTestedOnceForAllWhoAskAndHungUpByTheThirdFailure) {
    const Result works{LinkStatus::Works, LinkReason::None};
    const Result silent{LinkStatus::DoesNotWork, LinkReason::None};
    EXPECT_EQ(TestLink(*this), works);
    EXPECT_THAT(icmp.Asked(), ElementsAre("10.64.64.64")) << "the other end";
    EXPECT_THAT(Commands(), IsEmpty());
    icmp.allSilent = true;
    for (int dial = 1; dial <= 2; ++dial) {
        for (int test = 1; test <= 3; ++test) {
            EXPECT_EQ(dialUp.hangUps, dial - 1) << "a new connection is given three tests, too";
            for (int i = 0; i < 5; ++i)
                link.PingTest([](LinkResult) {});
            EXPECT_EQ(TestLink(*this), silent);
        }
        EXPECT_EQ(dialUp.hangUps, dial);
        EXPECT_EQ(icmp.Asked().size(), 1u + 3u * static_cast<unsigned>(dial));
        EXPECT_EQ(TestLink(*this), silent) << "without a connection nobody is asked";
        EXPECT_EQ(icmp.Asked().size(), 1u + 3u * static_cast<unsigned>(dial));
        Dial();
    }
}

TEST(LinkDiagnosis, NamesTheReason) {
    struct Row {
        std::vector<const char*> world;
        LinkReason reason;
        const char* before = "signal 18";
    };
    const Row rows[] = {
        {{}, LinkReason::None},
        {{}, LinkReason::None, "pin 1234"},  // which the module calls unusable, until it is unlocked
        {{"signal 9"}, LinkReason::PoorSignal},
        {{"signal 10"}, LinkReason::None},
        {{"sim out"}, LinkReason::Sim},
        {{"sim out", "urc RING"}, LinkReason::CallOrPower},
        {{"late 30s"}, LinkReason::NoAnswer},
        {{"late 30s", "power 14"}, LinkReason::CallOrPower},
    };
    for (const Row& row : rows) {
        SessionBench bench;
        bench.Happen(row.before);
        bench.screens.Type("1234");
        bench.OpenModule();
        bench.Arrange(row.world);
        bench.dialog->Data().RasHangUp();
        EXPECT_EQ(TestLink(bench), Result(LinkStatus::DoesNotWork, row.reason))
            << testing::PrintToString(row.world);
        EXPECT_THAT(bench.icmp.Asked(), IsEmpty());
    }
}

// Whatever the link is in, the module is shut down in time, nothing stays dialled, and it comes up again.
TEST(DataAtTheEnd, IsAtRestWhateverItWasIn) {
    for (Ticks when = 0; when <= 16'000; when += 400) {
        OpenBench bench(when + 1);
        DataLink& link = bench.dialog->Data();
        bench.icmp.allSilent = true;
        bench.dialUp.connects = when % 800 == 0;
        link.RasHangUp();
        bench.RunFor(3100);
        link.OpenNet();
        link.PingTest([](LinkResult) {});
        bench.RunFor(when);
        bench.dialog->CloseModule();
        bench.RunFor(8000);
        ExpectClosed(bench, "after " + std::to_string(when));
        link.OpenNet();
        bench.RunFor(5000);
        EXPECT_FALSE(link.Exists()) << "nothing is dialled for a closed module";
        EXPECT_EQ(bench.dialog->State().m_dataState, DataState::Off) << when;
        EXPECT_EQ(bench.dialUp.Current(), RasHandle::None) << when;
        bench.OpenModule();
        EXPECT_TRUE(link.Exists()) << when;
    }
}

}  // namespace
}  // namespace varkel::test
