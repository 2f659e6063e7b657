// The unit's own module and any other, each with the profile that is named and with the one that is found
// out.
#include <gtest/gtest.h>

#include "tests/modem/channel_bench.h"
#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

sim::UnitConfig Unit(sim::ModemKind kind) {
    sim::UnitConfig config;
    config.modem.kind = kind;
    return config;
}

TEST(ModemProfile, SpeaksOnlyTheStandardToOtherModules) {
    SessionBench bench(1, Unit(sim::ModemKind::Standard));
    bench.Happen("pin 1234");
    bench.screens.Type("9999");
    bench.screens.Type("1234");
    bench.Start("1", {.profile = &standardModule});
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    bench.RunFor(1000);
    EXPECT_EQ(bench.Mode(), ScreenMode::Idle);
    std::vector<std::string> sent = StartingWith({"AT"}, bench.unit.TakeTrace());
    sent.erase(std::unique(sent.begin(), sent.end()), sent.end());
    EXPECT_THAT(sent, ElementsAre("AT", "ATE1", "AT+COPS=0", "AT+IPR=115200", "AT+CPIN?", "AT+CPIN=\"9999\"",
                                  "AT+CPIN?", "AT+CPIN=\"1234\"", "AT+CPIN?", "AT+CSQ", "AT+CSCS=\"GSM\"",
                                  "AT+CSCA?", "AT+CSCA=\"+8613800100500\"", "AT+CPMS=\"SM\",\"SM\",\"SM\"",
                                  "AT+CMGF=0", "AT+CNMI=2,1", "AT+CLIP=1", "AT+CSCS=\"UCS2\"",
                                  "AT+CPBS = \"SM\"", "AT+CPBW=?", "AT+CPBS?", "AT+CIMI", "AT+GSN",
                                  "AT+CGDCONT=1,\"IP\",\"CMNET\"", "AT+CSQ", "AT+CSCS=\"GSM\""));
    EXPECT_EQ(bench.dialog->State().m_strImsi.Get(), "460001234567890");
    EXPECT_EQ(bench.dialog->State().m_strImei.Get(), "867959030000017");
    EXPECT_THAT(bench.LogContent(), HasSubstr("AT+CPIN=\"****\""));
    EXPECT_THAT(bench.LogContent(), Not(HasSubstr("9999")));
}

TEST(ModemProfile, IsFoundOutAtEachOpeningAndReceivesMessages) {
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
            EXPECT_EQ(bench.Mode(), ScreenMode::Idle);
            EXPECT_EQ(bench.dialog->State().profile, profile);
            bench.Happen("sms +8613800138000 \"Hello\"", 25'000);
            EXPECT_EQ(bench.dialog->Messages().Boxes().inbox.Count(), 1u);
        }
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
