// How the module starts, what it answers, byte for byte, and what becomes of that on the line; "|" stands for
// CR LF.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/wire.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

struct StartTest : testing::Test, test::BenchUnit {};

TEST_F(StartTest, BringsTheDeviceAndThenTheModule) {
    EXPECT_EQ(Driver(DrvFunction::Get3GPower), 0);
    EXPECT_FALSE(unit.LinePresent());
    EXPECT_FALSE(unit.NextDeadline()) << "nothing happens in a module that is off";
    Driver(DrvFunction::Set3GPower, 1);
    EXPECT_EQ(Driver(DrvFunction::Get3GPower), 1);
    EXPECT_EQ(Ask("AT", 1999), "") << "what comes before the device is there is lost";
    EXPECT_EQ(Driver(DrvFunction::GetUsbHostStatus), 0);
    Pass(1);
    EXPECT_EQ(Driver(DrvFunction::GetUsbHostStatus), 1);
    EXPECT_TRUE(unit.LinePresent());
    Converse({
        {"AT", "AT\r|OK|"},
        {"ATE0", "ATE0\r|OK|"},
        {"AT+URCIND=1", "|OK|"},
        {"", "", 1499},
        {"", "|+URCIND:5|", 1},
    });

    Write("AT+CLVL=5\rAT+CSQ\r", 0);
    Driver(DrvFunction::Set3GPower, 0);
    EXPECT_EQ(Pass(60'000), "");
    EXPECT_FALSE(unit.LinePresent());
    EXPECT_FALSE(unit.NextDeadline());
    Start();
    Converse({
        {"AT+CLVL?", "|+CLVL: 3||OK|"},  // settings do not outlive the power
        {"", "", 60'000},                // nobody has asked for the report
        {"AT+URCIND=1", "|OK||+URCIND:5|"},
        {"AT+URCIND?", "|+URCIND: 1||OK|"},
        {"!sim out", "|+URCIND:3||+CSMINS: 1,0|", 0},
    });
}

TEST(StartReport, GoesByTheSim) {
    struct Case {
        const char* name;
        std::initializer_list<std::string_view> setup;
        std::string_view atStart;
        std::string_view withPin = "";
    };
    const Case cases[] = {
        {"open", {}, "|+URCIND:5|"},
        {"locked", {"pin 1234"}, "|+URCIND:3|", "|OK||+URCIND:5|"},
        {"blocked", {"puk 12345678"}, "|+URCIND:3|"},
        {"absent", {"sim out"}, "|+URCIND:3|"},
        {"ready although locked", {"pin 1234", "start-report always-ready"}, "|+URCIND:5|", "|OK|"},
        {"three although ready", {"start-report always-no-sim"}, "|+URCIND:3|"},
        {"never", {"start-report never"}, ""},
        {"a slow card", {"time sim-start 6s"}, "|+URCIND:5|"},
    };
    for (const Case& each : cases) {
        test::BenchUnit bench;
        bench.Do(each.setup);
        bench.Driver(DrvFunction::Set3GPower, 1);
        bench.Pass(2000);
        bench.Write("ATE0\rAT+URCIND=1\r");
        EXPECT_EQ(bench.Pass(10'000), each.atStart) << each.name;
        if (each.withPin.empty()) continue;
        EXPECT_EQ(bench.Ask("AT+CPIN=1234", 10'000), each.withPin) << each.name;
    }
}

struct Dialogue : testing::Test, test::BenchUnit {};

TEST_F(Dialogue, EchoesAtOnceAndAnswersOneLineAfterTheOther) {
    Start();
    Ask("ATE1");
    Converse({
        {"AT+CSQ", "AT+CSQ\r", 19},
        {"", "|+CSQ: 18,99||OK|", 1},
        {"!time reply 0s", ""},
        {"AT", "AT\r|OK|", 0},
        {"!time reply 20ms", ""},
    });
    EXPECT_EQ(Write("AT+CSCS=\"UCS2\"\rAT+CSC", 0), "AT+CSCS=\"UCS2\"\r");
    EXPECT_EQ(Write("S?\rAT+CSQ\r"), "|OK|AT+CSCS?\r|+CSCS: \"UCS2\"||OK|AT+CSQ\r|+CSQ: 18,99||OK|");
}

TEST_F(Dialogue, RefusesWhatItCannotReadOrDo) {
    Start();
    for (const char* const line : {"AT+NONSENSE",
                                   "AT+CSQ=1",
                                   "AT+CSCS=\"KLINGON\"",
                                   "AT+CLVL=6",
                                   "AT+CLVL=",
                                   "AT+CLVL=1,1",
                                   "AT+ECHO=8",
                                   "AT+ECHO=64,1",
                                   "AT+IPR=115201",
                                   "AT+CGDCONT=17,\"IP\",\"x\"",
                                   "ATQ1",
                                   "ATD12a34;x",
                                   "\nAT+CLVX\b?",
                                   "AT + CSQ",
                                   "AT+CMGR=1\"",
                                   "AT+CUSD=1,\"*100#",
                                   "AT+CSCS=\"GSM\"x",
                                   "AT+CSQ?x",
                                   "AT+",
                                   "AT&",
                                   "AT1",
                                   "AT+CSQ\x01",
                                   "AT+CMGR=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17",
                                   "ATE0E0E0E0E0E0E0E0E0E0E0E0E0E0E0E0E0"})
        EXPECT_EQ(Ask(line), "|ERROR|") << line;
    Converse({
        {"AT+CSQ;+NONSENSE;+CLVL?", "|+CSQ: 18,99||ERROR|"},
        {"ate0v1+cscs = \"GSM\";+CLVL?;H", "|+CLVL: 3||OK|"},
        {"hello", ""},
        {"garbage AT+CLVL?", "|+CLVL: 3||OK|"},
        {"AT+CLVX\bL?", "|+CLVL: 3||OK|"},
        {"AT+CLVL?" + std::string(504, ' '), "|+CLVL: 3||OK|"},
        {"AT+CLVL?" + std::string(505, ' '), "|ERROR|"},
        {"AT" + std::string(100'000, 'x'), "|ERROR|"},
        {"AT", "|OK|"},
        {"AT+CPBR=0", "|+CME ERROR: invalid index|"},
        {"AT+CMGR=1", "|+CMS ERROR: invalid memory index|"},
        {"AT+CMEE=1", "|OK|"},
        {"AT+CPBR=0", "|+CME ERROR: 21|"},
        {"AT+CMGR=1", "|+CMS ERROR: 321|"},
        {"AT+CMEE=0", "|OK|"},
        {"AT+CPBR=0", "|ERROR|"},
        {"AT+CMGR=1", "|ERROR|"},
    });
}

TEST_F(Dialogue, KeepsThePhonebook) {
    Do({"book size 11", "book add \"Анна\" +79161234567 2", "book add \"a_\\\"€ж\" 10086 3"});
    Start();
    Converse({
        {"AT+CPBS?", "|+CPBS: \"SM\",2,11||OK|"},
        {"AT+CPBR=?", "|+CPBR: (1-11),20,20||OK|"},
        {"AT+CPBR=1,10",
         "|+CPBR: 2,\"+79161234567\",145,\"????\"|+CPBR: 3,\"10086\",129,\"a\x11\\22\x1B\x65?\"||OK|"},
        {"AT+CSCS=\"UCS2\"", "|OK|"},
        {"AT+CPBR=2", "|+CPBR: 2,\"+79161234567\",145,\"0410043D043D0430\"||OK|"},
        {"AT+CPBR=3", "|+CPBR: 3,\"10086\",129,\"0061005F002220AC0436\"||OK|"},
        {"AT+CPBR=1,12", "|+CME ERROR: invalid index|"},
        {"AT+CPBW=1,\"123\",129,\"00e0\"", "|OK|"},
        {"AT+CPBR=1", "|+CPBR: 1,\"123\",129,\"00E0\"||OK|"},
        {"AT+CPBW=,\"124\",129,\"0041\"", "|OK|"},
        {"AT+CPBR=4", "|+CPBR: 4,\"124\",129,\"0041\"||OK|"},
        {"AT+CPBW=4", "|OK|"},
        {"AT+CPBR=4", "|OK|"},
        {"AT+CPBW=12,\"123\",129,\"0041\"", "|+CME ERROR: invalid index|"},
        {"AT+CPBW=5,\"123\",129,\"004\"", "|+CME ERROR: invalid characters in text string|"},
        {"AT+CPBW=5,\"12x\",129,\"0041\"", "|+CME ERROR: invalid characters in dial string|"},
        {"AT+CPBW=5,\"123456789012345678901\",129,\"0041\"", "|+CME ERROR: dial string too long|"},
        {"AT+CPBW=5,\"1\",129,\"0430043004300430043004300430043004300430\"",
         "|+CME ERROR: text string too long|"},
        {"AT+CPBW=5,\"1\",130,\"0041\"", "|+CME ERROR: incorrect parameters|"},
        {"AT+CSCS=\"IRA\"", "|OK|"},
        {"AT+CPBW=5,\"1\",129,\"\\22a\\5Cb\"", "|OK|"},
        {"AT+CPBR=5", "|+CPBR: 5,\"1\",129,\"\\22a\\5Cb\"||OK|"},
        {"AT+CPBW=5,\"1\",129,\"\\2\"", "|+CME ERROR: invalid characters in text string|"},
        {"AT+CPBS=\"ME\"", "|+CME ERROR: operation not supported|"},
    });
}

TEST_F(Dialogue, FollowsTheNetwork) {
    Start();
    Converse({
        {"AT+CREG=1", "|OK|"},
        {"!signal 5", ""},
        {"AT+CSQ", "|+CSQ: 5,99||OK|"},
        {"!network off", "|+CREG: 2|"},
        {"AT+CSQ", "|+CSQ: 99,99||OK|"},
        {"ATD10086;", "|+CME ERROR: no network service|"},
        {"ATD112;", ""},  // an emergency call needs no registration
        {"AT+CHUP", "|NO CARRIER||OK|"},
        {"!network on", "|+CREG: 1|", 2000},
        {"AT+COPS?", "|+COPS: 0,2,\"46000\",2||OK|"},
    });
}

struct WireTest : testing::Test, test::BenchUnit {
    WireTest() { Start(); }
};

TEST_F(WireTest, SplitsIntoPiecesThatComeBackToBack) {
    Do({"split 5"});
    unit.HostWrites("AT+CSQ\r", now);
    EXPECT_THAT(Pieces(20), testing::ElementsAre("\r\n+CS", "Q: 18", ",99\r\n", "\r\nOK\r", "\n"));
    Do({"split 0"});
    unit.HostWrites("AT+CSQ\r", now);
    EXPECT_THAT(Pieces(20), testing::ElementsAre("\r\n+CSQ: 18,99\r\n\r\nOK\r\n"));
}

TEST_F(WireTest, DelaysEverythingAndKeepsTheOrder) {
    Converse({
        {"!late 2s", "", 0},
        {"AT+CSQ", "", 2019},
        {"", "|+CSQ: 18,99||OK|", 1},
        {"AT+CLVL?", "", 100},
        {"!late 0", "", 0},
        {"AT+CSQ", "|+CLVL: 3||OK||+CSQ: 18,99||OK|", 3000},
    });
}

TEST_F(WireTest, LosesAndRepeatsWholeAnswers) {
    Ask("ATE1");
    Converse({
        {"!lose 1", ""},
        {"AT", "AT\r"},  // the echo is no answer
        {"!lose 0", ""},
        {"!double 1", ""},
        {"AT", "AT\r|OK||OK|"},
        {"!calm", ""},
        {"AT", "AT\r|OK|"},
    });
}

TEST(Noise, IsAsMuchAsAskedForAndTheSameForTheSameSeed) {
    const auto garble = [](std::uint64_t seed) {
        Wire wire(seed);
        wire.Settings().noise = 0.01;
        wire.Send(std::string(100'000, 'x'), Burst::Answer, 0);
        return wire.Take(0);
    };
    const std::string first = garble(7);
    const auto wrong = std::count_if(first.begin(), first.end(), [](char c) { return c != 'x'; });
    EXPECT_GT(wrong, 800);
    EXPECT_LT(wrong, 1200);
    EXPECT_EQ(first, garble(7));
    EXPECT_NE(first, garble(8));
}

TEST(LateBytes, AreBounded) {
    Wire wire(1);
    wire.Settings().late = 1000;
    for (int i = 0; i < 1000; ++i)
        wire.Send(std::string(1000, 'x'), Burst::Answer, 0);
    std::size_t arrived = 0;
    for (std::string piece = wire.Take(1000); !piece.empty(); piece = wire.Take(1000))
        arrived += piece.size();
    EXPECT_LE(arrived, Wire::limit);
    EXPECT_GT(arrived, Wire::limit - 1001);
    wire.Send("x", Burst::Answer, 1000);
    EXPECT_EQ(wire.Next(), 2000u) << "there is room again";
}

}  // namespace
}  // namespace varkel::sim
