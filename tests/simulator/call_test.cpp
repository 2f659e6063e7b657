// Calls and service codes, byte for byte; "|" stands for CR LF.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;
using testing::ElementsAre;
using testing::HasSubstr;

struct Calls : testing::Test {
    Calls() { bench.Start(); }
    std::string Dial(std::string_view number) { return bench.Ask("ATD" + std::string(number) + ";"); }
    bool Engaged() { return bench.unit.GetModem().CurrentCall().Phase() != CallPhase::Idle; }

    BenchUnit bench;
};

TEST_F(Calls, RingEveryThreeSecondsAndSayWhoCalls) {
    bench.Do({"book add \"NO CARRIER\" 13800138000", "call 13800138000"});
    EXPECT_EQ(bench.Pass(2999), "|RING|") << "nobody asked for the number";
    EXPECT_EQ(bench.Ask("AT+CLIP=1"), "|RING||OK|");
    EXPECT_EQ(bench.Pass(2600), "|RING||+CLIP: \"13800138000\",129,,,\"NO CARRIER\",0|");
    bench.Do({"hangup"});
    EXPECT_EQ(bench.Pass(10'000), "|NO CARRIER|");

    bench.Do({"call hidden"});
    EXPECT_EQ(bench.Pass(0), "|RING||+CLIP: \"\",128,,,,1|");
    EXPECT_EQ(bench.Ask("AT+CLCC"), "|+CLCC: 1,1,4,0,0,\"\",129||OK|");
    EXPECT_EQ(bench.Ask("AT+CHUP"), "|OK|");
    EXPECT_EQ(bench.Pass(10'000), "") << "refused";

    bench.Do({"call +8613800138000"});
    EXPECT_EQ(bench.Ask("ATA"), "|RING||+CLIP: \"+8613800138000\",145,,,,0||OK|");
    EXPECT_EQ(bench.Pass(10'000), "") << "answered";
    bench.Do({"call 10010"});
    EXPECT_EQ(bench.Pass(100), "");
    EXPECT_EQ(bench.Ask("ATH"), "|OK|");
    EXPECT_EQ(bench.Ask("ATA"), "|NO CARRIER|");
    EXPECT_THAT(bench.networkSaid,
                ElementsAre("call from 13800138000", "13800138000 gives up", "call from a hidden number",
                            "the module refuses the call from a hidden number", "call from +8613800138000",
                            "the module takes the call from +8613800138000",
                            "call from 10010 is refused: the module is engaged",
                            "the module hangs up on +8613800138000"));

    bench.Do({"call 10010"});
    EXPECT_THAT(bench.Pass(VoiceCall::patience), HasSubstr("|NO CARRIER|")) << "nobody waits for ever";
}

TEST_F(Calls, GetTheirResultFromTheFarEnd) {
    const std::pair<const char*, const char*> ends[] = {
        {"busy", "|BUSY|"},
        {"no-answer", "|NO ANSWER|"},
        {"no-carrier", "|NO CARRIER|"},
        {"no-dialtone", "|NO DIALTONE|"},
        {"hangup", "|NO CARRIER|"},
    };
    for (const auto& [end, result] : ends) {
        EXPECT_EQ(Dial("13800138000"), "") << "it rings there";
        bench.Do({end});
        EXPECT_EQ(bench.Pass(60'000), result) << end;
    }
    EXPECT_EQ(Dial("138-0013 (8000)"), "");
    EXPECT_EQ(bench.Ask("AT+CLCC"), "|+CLCC: 1,0,3,0,0,\"13800138000\",129||OK|");
    EXPECT_EQ(Dial("124"), "|+CME ERROR: operation not allowed|");
    EXPECT_EQ(bench.Ask("AT+VTS=1"), "|+CME ERROR: operation not allowed|");
    bench.Do({"answer"});
    EXPECT_EQ(bench.Pass(60'000), "|OK|");
    EXPECT_EQ(bench.Ask("AT+CLCC"), "|+CLCC: 1,0,0,0,0,\"13800138000\",129||OK|");
    EXPECT_EQ(bench.Ask("AT+VTS=\"#\""), "|OK|");
    EXPECT_EQ(bench.networkSaid.back(), "13800138000 hears the tone #");
    EXPECT_EQ(bench.Ask("AT+VTS=12"), "|ERROR|");
    EXPECT_FALSE(bench.unit.Command("busy", bench.now).well) << "too late";
    bench.Do({"hangup"});
    EXPECT_EQ(bench.Pass(0), "|NO CARRIER|");
    EXPECT_EQ(bench.Ask("AT+CHUP"), "|OK|") << "nothing to hang up";

    EXPECT_EQ(Dial("13800138000"), "");
    EXPECT_EQ(bench.Ask("AT+CHUP"), "|NO CARRIER||OK|") << "both commands have an end";
    EXPECT_EQ(bench.Ask("ATD123"), "|NO CARRIER|") << "no data calls";
    bench.Do({"time dial 3s"});
    bench.unit.HostWrites("ATD10000;\r", bench.now);
    EXPECT_EQ(bench.Pass(4999), "");
    EXPECT_EQ(bench.Pass(1), "|OK|");
}

TEST_F(Calls, EndWithWhatCarriesThem) {
    struct Loss {
        const char* command;
        const char* after;
        const char* heard;
    };
    const Loss losses[] = {{"network off", "network on", "|NO CARRIER|"},
                           {"sim out", "sim in", "|NO CARRIER||+CSMINS: 1,0||+CSMINS: 1,1|"},
                           {"usb down", "usb up", ""},
                           {"vanish", "appear", ""},
                           {"module restart", "state", ""},
                           {"module off", "module on", ""}};
    for (const Loss& loss : losses) {
        bench.Do({"call 10010"});
        bench.Ask("ATA");
        ASSERT_TRUE(Engaged()) << loss.command;
        bench.Do({loss.command});
        EXPECT_FALSE(Engaged()) << loss.command;
        EXPECT_THAT(bench.networkSaid.back(), HasSubstr("the call with 10010 ends: the module"))
            << loss.command;
        bench.Do({"call 10011"});
        bench.Do({loss.after});
        const std::string heard = bench.Pass(20'000);
        EXPECT_EQ(heard.substr(0, heard.find("|RING|")), loss.heard) << loss.command;
        bench.unit.Command("hangup", bench.now);
        bench.Ask("ATE0");
    }
}

TEST_F(Calls, LeaveServiceCodesToTheNetwork) {
    bench.unit.HostWrites("AT+CUSD=1,\"*100#\",15\r", bench.now);
    EXPECT_EQ(bench.Pass(1100), "|OK||+CUSD: 0,\"Balance: 42.00\",15|");
    bench.unit.HostWrites("ATD*100#;\r", bench.now);
    EXPECT_EQ(bench.Pass(1100), "|OK||+CUSD: 0,\"Balance: 42.00\",15|");
    bench.unit.HostWrites("AT+CUSD=1,\"*100#\",15\rAT+CUSD=2\r", bench.now);
    EXPECT_EQ(bench.Pass(3000), "|OK||OK|") << "cancelled";
    EXPECT_EQ(bench.Ask("AT+CUSD=0,\"*\",15"), "|OK|");
    EXPECT_EQ(bench.Ask("AT+CUSD=3"), "|ERROR|");

    const std::string question = "|OK||+CUSD: 1,\"04110430043B0430043D0441003F\",72|";
    const auto ask = [this](std::string_view text) {
        bench.unit.HostWrites("AT+CUSD=1,\"" + std::string(text) + "\",15\r", bench.now);
        return bench.Pass(1100);
    };
    bench.Do({"ussd-ask Баланс?"});
    EXPECT_EQ(ask("*100#"), question);
    EXPECT_EQ(ask("1"), "|OK||+CUSD: 0,\"Balance: 42.00\",15|") << "the reply";
    EXPECT_EQ(ask("*100#"), question);
    bench.Do({"ussd-end"});
    EXPECT_EQ(bench.Pass(100'000), "|+CUSD: 2|");
    EXPECT_EQ(ask("*100#"), question);
    EXPECT_EQ(bench.Pass(60'000), "|+CUSD: 2|") << "nobody replied";
    EXPECT_EQ(ask("*100#"), question);
    EXPECT_EQ(bench.Ask("AT+CUSD=2"), "|OK|");
    EXPECT_EQ(bench.Pass(100'000), "");
    EXPECT_EQ(ask("*100#"), question) << "a new dialogue";
}

}  // namespace
}  // namespace varkel::sim
