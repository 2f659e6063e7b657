// The unit's own module and any other, each with the profile that is named and with the one that is found
// out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/modem/channel_bench.h"
#include "tests/support/session_bench.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

sim::UnitConfig Unit(sim::ModemKind kind) {
    sim::UnitConfig config;
    config.modem.kind = kind;
    return config;
}

// What the module was sent, without the repeats of polls.
std::vector<std::string> Sent(SessionBench& bench) {
    std::vector<std::string> sent;
    for (std::string& line : bench.unit.TakeTrace()) {
        if (line.starts_with("AT") && (sent.empty() || sent.back() != line)) sent.push_back(std::move(line));
    }
    return sent;
}

TEST(ModemProfile, SpeaksOnlyTheStandardToOtherModules) {
    SessionBench bench(1, Unit(sim::ModemKind::Standard));
    bench.unit.Command("pin 1234");
    bench.screens.Type("9999");
    bench.screens.Type("1234");
    bench.Start("1", {.profile = &standardModule});
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    bench.RunFor(1000);
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle);
    EXPECT_THAT(
        Sent(bench),
        ElementsAre("AT", "ATE1", "AT+COPS=0", "AT+IPR=115200", "AT+CPIN?", "AT+CPIN=\"9999\"", "AT+CPIN?",
                    "AT+CPIN=\"1234\"", "AT+CPIN?", "AT+CSQ", "AT+CSCS=\"GSM\"", "AT+CSCA?",
                    "AT+CSCA=\"+8613800100500\"", "AT+CPMS=\"SM\",\"SM\",\"SM\"", "AT+CMGF=0", "AT+CNMI=2,1",
                    "AT+CLIP=1", "AT+CSCS=\"UCS2\"", "AT+CPBS = \"SM\"", "AT+CPBW=?", "AT+CPBS?", "AT+CIMI",
                    "AT+GSN", "AT+CGDCONT=1,\"IP\",\"CMNET\"", "AT+CSQ", "AT+CSCS=\"GSM\""));
    EXPECT_EQ(bench.dialog->State().m_strImsi.Get(), "460001234567890");
    EXPECT_EQ(bench.dialog->State().m_strImei.Get(), "867959030000017");
    EXPECT_THAT(bench.LogContent(), HasSubstr("AT+CPIN=\"****\""));
    EXPECT_THAT(bench.LogContent(), Not(HasSubstr("9999")));
}

TEST(ModemProfile, IsFoundOutAtEachOpening) {
    const std::pair<sim::ModemKind, const ModemProfile*> modules[] = {
        {sim::ModemKind::Unit, &unitModule}, {sim::ModemKind::Standard, &standardModule}};
    for (const auto& [kind, profile] : modules) {
        SCOPED_TRACE(profile->name);
        sim::UnitConfig slow = Unit(kind);
        slow.modem.times.reply = 1200;  // later than the question is asked again
        for (const sim::UnitConfig& config : {Unit(kind), slow}) {
            SessionBench bench(1, config);
            bench.Start("1", {.profile = nullptr});
            ASSERT_TRUE(bench.RunUntilOpenEnds());
            EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle);
            EXPECT_EQ(bench.dialog->State().profile, profile);
        }
    }
}

TEST(ModemProfile, CarriesCallsAndMessages) {
    SessionBench bench(1, Unit(sim::ModemKind::Standard));
    bench.Start("1", {.profile = nullptr});
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    bench.unit.Command("sms +8613800138000 \"Hello\"");
    bench.RunFor(10'000);
    EXPECT_EQ(bench.dialog->Messages().Boxes().inbox.FindSmsRecord().size(), 1u);

    bench.unit.Command("call +8613800138000");
    bench.RunFor(4000);
    EXPECT_THAT(bench.screens.Shown(), Contains("caller +8613800138000 IDS_RING"));
    bench.dialog->Calls().Answer();
    bench.RunFor(3000);
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::InCall);
    bench.dialog->Calls().HangUp();
    bench.RunFor(3000);
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle);
    EXPECT_TRUE(bench.unit.AudioAtRest());
}

struct Failure {
    const char* name;
    std::vector<const char*> world;
    const char* warning;
};

TEST(ModemProfile, EndsInOrderWhenAModuleStaysSilentOrHasNoSim) {
    const Failure failures[] = {
        {"silent", {"time reply 200s"}, "warn 16"},
        {"says nothing of the SIM", {"sim out"}, "warn 16"},
        {"reports no SIM", {"no-sim-answer not-ready", "sim out"}, "warn 15"},
    };
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.name);
        SessionBench bench(1, Unit(sim::ModemKind::Standard));
        bench.Start("1", {.profile = nullptr});
        ASSERT_TRUE(bench.RunUntil([&] { return bench.unit.Count("Set3GPower 1") == 1; }, 10'000));
        for (const char* command : failure.world)
            bench.unit.Command(command);
        ASSERT_TRUE(bench.RunUntilOpenEnds());
        EXPECT_EQ(bench.screens.Count(failure.warning), 1);
        EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed);
        EXPECT_EQ(bench.unit.SuspendLocks(), 0);
    }
}

TEST(ModemProfile, AsksForTheNearestAccessThatTheStandardHas) {
    const std::pair<int, const char*> modes[] = {{0, "AT+COPS=0\r"},
                                                 {1, "AT+COPS=0,,,2\r"},
                                                 {2, "AT+COPS=0\r"},
                                                 {3, "AT+COPS=0,,,0\r"},
                                                 {4, "AT+COPS=0\r"}};
    for (const auto& [mode, command] : modes) {
        ChannelBench bench;
        bench.Open();
        standardModule.setNetworkMode(bench.channel, mode);
        bench.runtime.Sleep(10);
        EXPECT_EQ(bench.serial.Written(), command) << mode;
    }
}

}  // namespace
}  // namespace varkel::test
