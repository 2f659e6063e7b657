// The data link: whose access point, dialling, its states, its test, and every way in which it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AccessPoint, IsThatOfTheFirstOperatorThatServesTheSim) {
    struct Row {
        std::vector<const char*> codes;  // the access point of each is its place
        const char* chosen;              // nullptr = none
    };
    const Row rows[] = {
        {{"46001", "46000", "4600"}, "1"},
        {{"46001", "4600", "46000"}, "1"},
        {{"46001", ""}, "1"},
        {{"", "46000"}, "0"},
        {{"460001234567890"}, "0"},
        {{"4600012345678901"}, nullptr},
        {{"26201", "46001"}, nullptr},
        {{}, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.codes));
        SessionBench bench;
        std::vector<ISP_Struct> operators;
        for (const char* code : row.codes)
            operators.push_back(Operator("name", std::to_string(operators.size()).c_str(), code));
        InstallOperators(bench.files, operators);
        Settings settings(bench.registry);
        settings.WriteIsp(Operator("earlier", "earlier", ""));
        bench.Start("");
        bench.dialog->OpenModule();
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        const char* const expected = row.chosen ? row.chosen : "earlier";
        EXPECT_EQ(bench.dialog->Data().CurrentIsp().szAPN.View(), expected);
        EXPECT_EQ(settings.ReadIsp()->szAPN.View(), expected);
        EXPECT_EQ(bench.screens.Count("warn 38"), row.chosen ? 0 : 1);
        EXPECT_EQ(bench.dialUp.dialled.size(), row.chosen ? 1u : 0u);
    }
}

TEST(AccessPoint, IsUsedEvenWhenItCannotBeKept) {
    SessionBench bench;
    bench.registry.refuseWrites = true;
    bench.Start("");
    bench.dialog->OpenModule();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    EXPECT_THAT(bench.notices.Boxes(), testing::Contains("|Failed to set ISP to REG!"));
    EXPECT_EQ(bench.unit.Count("AT+CGDCONT=1,\"IP\",\"CMNET\""), 1);
}

struct Data : testing::Test {
    Data() {
        listener = bench.windows.AddProgram([this](const WindowMessage& message) {
            if (message.id == 1566) heard.emplace_back(message.wParam, message.lParam);
        });
    }

    void Report(std::initializer_list<RasState> states) {
        for (const RasState state : states)
            bench.dialUp.Report(state);
        bench.RunFor(100);
    }
    void Connect() { Report({RasState::OpenPort, RasState::Connected}); }
    void Listen() {
        bench.windows.PostMessage(bench.dialog->Window(),
                                  {WM_USER + 1000, static_cast<std::uint32_t>(listener), 0});
        bench.RunFor(10'000);
        heard.clear();
    }
    // The result of a test, and how long it took.
    std::pair<std::uint32_t, std::uint32_t> Test() {
        std::optional<LinkResult> result;
        link.PingTest([&result](LinkResult found) { result = found; });
        EXPECT_TRUE(bench.RunUntil([&] { return result.has_value(); }, 60'000));
        if (!result) return {0, 0};
        return {static_cast<std::uint32_t>(result->status), static_cast<std::uint32_t>(result->reason)};
    }
    bool AtRest() { return !link.Exists() && !link.Dialling() && !link.Connected(); }

    OpenBench bench;
    DataLink& link = bench.dialog->Data();
    WindowHandle listener = WindowHandle::None;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> heard;
};

TEST_F(Data, IsDialledAndHungUpWithItsPauses) {
    ISP_Struct isp = Operator("CMCC", "my.apn", "");
    isp.userName.Assign("\xC3\xFB");  // GB18030
    isp.password.Assign("secret");
    link.SetISPToReg(isp);
    const auto timed = [this](auto action, auto holds) {
        const std::uint64_t start = bench.runtime.Elapsed();
        action();
        EXPECT_TRUE(bench.RunUntil(holds, 20'000));
        return static_cast<double>(bench.runtime.Elapsed() - start);
    };
    const auto shown = [this](const char* text, int times) {
        return [=, this] { return bench.screens.Count(text) == times; };
    };
    const int cleared = bench.screens.Count("status ");
    EXPECT_NEAR(timed([&] { link.RasHangUp(); }, shown("status ", cleared + 1)), 3000, 100);
    EXPECT_NEAR(timed([&] { link.RasHangUp(); }, shown("status ", cleared + 2)), 2000, 100)
        << "nothing there";
    EXPECT_EQ(bench.screens.Count("status IDS_UNLINKNET"), 2);
    EXPECT_EQ(bench.dialUp.hangUps, 1);

    const auto dialled = [this] { return bench.dialUp.dialled.size() == 2; };
    EXPECT_NEAR(timed([&] { link.OpenNet(); }, dialled), 1200, 100);
    EXPECT_NEAR(timed([] {}, shown("status ", cleared + 3)), 3000, 100);
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CGDCONT=1,\"IP\",\"my.apn\""));
    const RasDialParams& params = bench.dialUp.dialled.back();
    EXPECT_EQ(params.entryName, "connet");
    EXPECT_EQ(params.userName, "名");
    EXPECT_EQ(params.password, "secret");
    EXPECT_EQ(bench.LogContent().find("secret"), std::string::npos);
    link.OpenNet();
    bench.RunFor(6000);
    EXPECT_EQ(bench.dialUp.dialled.size(), 2u) << "there is a connection already";
}

TEST_F(Data, FollowsItsStates) {
    const std::pair<RasState, DataState> states[] = {
        {RasState::OpenPort, DataState::Dialling},      {RasState::DeviceConnected, DataState::Dialling},
        {RasState::Connected, DataState::Connected},    {RasState::Authenticate, DataState::Dialling},
        {RasState::Authenticated, DataState::Dialling}, {RasState::Connected, DataState::Connected},
        {RasState::Disconnected, DataState::Off},
    };
    for (const auto& [state, shown] : states) {
        Report({state});
        EXPECT_EQ(bench.dialog->State().m_dataState, shown) << static_cast<unsigned>(state);
    }
    bench.RunFor(4000);
    EXPECT_TRUE(AtRest());
    EXPECT_EQ(bench.dialUp.hangUps, 1);
    bench.dialUp.Report(RasState::Connected);  // comes when the next one is being dialled
    link.OpenNet();
    bench.runtime.Sleep(5000);
    bench.RunFor(100);
    EXPECT_TRUE(link.Exists());
    EXPECT_FALSE(link.Connected()) << "the old connection's state";
}

TEST_F(Data, IsGivenUpWhenItIsNotThereAfterFourMinutes) {
    Report({RasState::OpenPort, RasState::ConnectDevice});
    bench.RunFor(239'000);
    EXPECT_EQ(bench.dialUp.hangUps, 0);
    bench.RunFor(1500);
    EXPECT_EQ(bench.dialUp.hangUps, 1);
    EXPECT_TRUE(AtRest());
    link.OpenNet();
    bench.RunFor(5000);
    Connect();
    bench.RunFor(600'000);
    EXPECT_TRUE(link.Connected());
    EXPECT_EQ(bench.dialUp.hangUps, 1);
}

TEST_F(Data, CanBeDialledAgainAfterARefusal) {
    link.RasHangUp();
    bench.RunFor(5000);
    bench.dialUp.refusal = RasError::Busy;
    link.OpenNet();
    bench.RunFor(5000);
    EXPECT_EQ(bench.screens.Count("warn 19"), 1);
    EXPECT_TRUE(AtRest());
    bench.dialUp.refusal = RasError::None;
    link.SetISPToReg(Operator("x", "a\"\rATD110;", ""));
    link.OpenNet();
    bench.RunFor(5000);
    EXPECT_EQ(bench.screens.Count("warn 19"), 2) << "no such access point leaves the program";
    link.SetISPToReg(DefaultIsp());
    link.OpenNet();
    bench.RunFor(5000);
    EXPECT_TRUE(link.Exists());
}

TEST_F(Data, IsHungUpForAPoorSignalAndDialledAgainWithAGoodOne) {
    Connect();
    Listen();
    bench.unit.Command("signal 99");
    bench.RunFor(60'000);
    EXPECT_THAT(heard, ElementsAre(std::pair(2u, 12u)));
    EXPECT_EQ(bench.dialUp.hangUps, 1);
    EXPECT_TRUE(AtRest());
    bench.unit.Command("signal 8");
    bench.RunFor(60'000);
    EXPECT_EQ(bench.dialUp.dialled.size(), 2u);
    EXPECT_TRUE(link.Exists());
    EXPECT_EQ(heard.size(), 1u);
}

TEST_F(Data, IsTestedWithEachHostUntilOneAnswers) {
    Connect();
    EXPECT_EQ(Test(), std::pair(1u, 0u));
    EXPECT_THAT(bench.icmp.asked, ElementsAre("10.64.64.64")) << "the other end";
    EXPECT_THAT(bench.Commands(), IsEmpty());

    bench.icmp.allSilent = true;
    EXPECT_EQ(Test(), std::pair(2u, 0u));
    EXPECT_EQ(Test(), std::pair(2u, 0u));
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CPIN?", "AT+CPIN?"));
    EXPECT_EQ(bench.dialUp.hangUps, 0);
    EXPECT_EQ(Test(), std::pair(2u, 0u));
    EXPECT_EQ(bench.dialUp.hangUps, 1) << "with the third failure in a row";
    EXPECT_TRUE(AtRest());
    const std::size_t asked = bench.icmp.asked.size();
    EXPECT_EQ(Test(), std::pair(2u, 0u));
    EXPECT_EQ(bench.icmp.asked.size(), asked) << "without a connection nobody is asked";

    link.OpenNet();
    bench.RunFor(5000);
    Connect();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Test(), std::pair(2u, 0u));
    EXPECT_EQ(bench.dialUp.hangUps, 2) << "a new connection is given three tests, too";
}

TEST(LinkDiagnosis, NamesTheReason) {
    struct Row {
        std::vector<const char*> world;
        std::uint32_t reason;
    };
    const Row rows[] = {
        {{}, 0},
        {{"signal 9"}, 12},
        {{"signal 10"}, 0},
        {{"sim out"}, 11},
        {{"sim out", "urc RING"}, 2},
        {{"late 30s"}, 16},
        {{"late 30s", "power 14"}, 2},
    };
    for (const Row& row : rows) {
        OpenBench world;
        for (const char* command : row.world)
            EXPECT_EQ(world.unit.Command(command), "") << command;
        world.RunFor(row.world.empty() ? 0 : 5000);
        std::optional<LinkResult> result;
        world.dialog->Data().RasHangUp();
        world.dialog->Data().PingTest([&result](LinkResult found) { result = found; });
        ASSERT_TRUE(world.RunUntil([&] { return result.has_value(); }, 30'000));
        EXPECT_EQ(result->status, LinkStatus::DoesNotWork);
        EXPECT_EQ(static_cast<std::uint32_t>(result->reason), row.reason)
            << testing::PrintToString(row.world);
        EXPECT_THAT(world.icmp.asked, IsEmpty());
    }
}

// The module calls a locked SIM unusable; what counts is that it was unlocked.
TEST(LinkDiagnosis, FindsNoFaultWithASimThatWasUnlocked) {
    SessionBench bench;
    bench.unit.Command("pin 1234");
    bench.screens.Type("1234");
    bench.Start("");
    bench.dialog->OpenModule();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    bench.icmp.allSilent = true;
    std::optional<LinkResult> result;
    bench.dialog->Data().PingTest([&result](LinkResult found) { result = found; });
    ASSERT_TRUE(bench.RunUntil([&] { return result.has_value(); }, 30'000));
    EXPECT_EQ(result->reason, LinkReason::None);
}

TEST_F(Data, IsTestedOnceForAllWhoAskMeanwhile) {
    Connect();
    bench.icmp.allSilent = true;
    int answers = 0;
    for (int i = 0; i < 5; ++i) {
        link.PingTest([&answers](LinkResult) { ++answers; });
        bench.RunFor(300);
    }
    bench.RunFor(10'000);
    EXPECT_EQ(answers, 5);
    EXPECT_EQ(bench.icmp.asked.size(), 1u);
}

// Whatever the link is in, the module is shut down in time, nothing stays dialled, and it comes up again.
TEST(DataAtTheEnd, IsAtRestWhateverItWasIn) {
    for (Ticks when = 0; when <= 16'000; when += 400) {
        SCOPED_TRACE(when);
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
        ASSERT_TRUE(bench.RunUntil([&] { return Settings(bench.registry).ReadOpenFlag() == 0; }, 8000));
        EXPECT_FALSE(link.Exists());
        EXPECT_EQ(bench.dialog->State().m_dataState, DataState::Off);
        EXPECT_EQ(bench.dialUp.Current(), RasHandle::None);
        link.OpenNet();
        bench.RunFor(5000);
        EXPECT_EQ(bench.dialUp.Current(), RasHandle::None) << "nothing is dialled for a closed module";
        bench.dialog->OpenModule();
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        EXPECT_TRUE(link.Exists());
        bench.Quit();
        EXPECT_EQ(bench.dialUp.Current(), RasHandle::None);
    }
}

}  // namespace
}  // namespace varkel::test
