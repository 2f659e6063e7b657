// Calls and service codes, byte for byte; "|" stands for CR LF.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using testing::HasSubstr;

struct Calls : testing::Test, test::BenchUnit {
    Calls() { Start(); }
};

TEST_F(Calls, RingEveryThreeSecondsAndSayWhoCalls) {
    Converse({
        {"!book add \"NO CARRIER\" 13800138000", ""},
        {"!call 13800138000", "|RING|", 2999},  // nobody has asked for the number
        {"AT+CLIP=1", "|RING||OK|"},
        {"", "|RING||+CLIP: \"13800138000\",129,,,\"NO CARRIER\",0|", 2600},
        {"!hangup", "|NO CARRIER|", 10'000},
        {"!call hidden", "|RING||+CLIP: \"\",128,,,,1|", 0},
        {"AT+CLCC", "|+CLCC: 1,1,4,0,0,\"\",129||OK|"},
        {"AT+CHUP", "|OK|", 10'000},
        {"!call +8613800138000", "|RING||+CLIP: \"+8613800138000\",145,,,,0|", 0},
        {"ATA", "|OK|", 10'000},
        {"!call 10010", ""},  // engaged
        {"ATH", "|OK|"},
        {"ATA", "|NO CARRIER|"},
    });
    Do({"call 10010"});
    EXPECT_THAT(Pass(VoiceCall::patience), HasSubstr("|NO CARRIER|")) << "nobody waits for ever";
}

TEST_F(Calls, GetTheirResultFromTheFarEnd) {
    const std::pair<const char*, const char*> ends[] = {
        {"!busy", "|BUSY|"},
        {"!no-answer", "|NO ANSWER|"},
        {"!no-carrier", "|NO CARRIER|"},
        {"!no-dialtone", "|NO DIALTONE|"},
        {"!hangup", "|NO CARRIER|"},
    };
    for (const auto& [end, result] : ends)
        Converse({{"ATD13800138000;", ""}, {end, result, 60'000}});
    Converse({
        {"ATD138-0013 (8000);", ""},
        {"AT+CLCC", "|+CLCC: 1,0,3,0,0,\"13800138000\",129||OK|"},
        {"ATD124;", "|+CME ERROR: operation not allowed|"},
        {"AT+VTS=1", "|+CME ERROR: operation not allowed|"},
        {"!answer", "|OK|", 60'000},
        {"AT+CLCC", "|+CLCC: 1,0,0,0,0,\"13800138000\",129||OK|"},
        {"AT+VTS=12", "|ERROR|"},
        {"AT+VTS=\"#\"", "|OK|"},
    });
    EXPECT_EQ(networkSaid.back(), "13800138000 hears the tone #");
    EXPECT_FALSE(unit.Command("busy", now).well) << "too late";
    Converse({
        {"!hangup", "|NO CARRIER|"},
        {"AT+CHUP", "|OK|"},  // nothing to hang up
        {"ATD13800138000;", ""},
        {"AT+CHUP", "|NO CARRIER||OK|"},  // both commands have an end
        {"ATD123", "|NO CARRIER|"},       // no data calls
        {"!time dial 3s", ""},
        {"ATD10000;", "", 4999},
        {"", "|OK|", 1},
    });
}

TEST_F(Calls, LeaveServiceCodesToTheNetwork) {
    constexpr std::string_view ask = "AT+CUSD=1,\"*100#\",15";
    constexpr std::string_view balance = "|OK||+CUSD: 0,\"Balance: 42.00\",15|";
    constexpr std::string_view question = "|OK||+CUSD: 1,\"04110430043B0430043D0441003F\",72|";
    Converse({
        {ask, balance, 1100},
        {"ATD*100#;", balance, 1100},
        {ask, "|OK|"},
        {"AT+CUSD=2", "|OK|", 3000},  // cancelled
        {"AT+CUSD=3", "|ERROR|"},
        {"!ussd-ask Баланс?", ""},
        {ask, question, 1100},
        {"AT+CUSD=1,\"1\",15", balance, 1100},
        {ask, question, 1100},
        {"!ussd-end", "|+CUSD: 2|", 100'000},
        {ask, question, 1100},
        {"", "|+CUSD: 2|", 60'000},  // nobody replied
        {ask, question, 1100},
        {"AT+CUSD=2", "|OK|", 100'000},
        {ask, question, 1100},  // a new dialogue
    });
}

}  // namespace
}  // namespace varkel::sim
