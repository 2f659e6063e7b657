// What the modem answers, byte for byte; "|" stands for CR LF.
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

struct Exchanged {
    std::string_view ask;
    std::string_view answer;
};

void Converse(BenchUnit& bench, std::initializer_list<Exchanged> dialogue) {
    for (const Exchanged& each : dialogue)
        EXPECT_EQ(bench.Ask(each.ask), each.answer) << each.ask;
}

TEST(Dialogue, EchoesAtOnceAndAnswersAfterTheReplyTime) {
    BenchUnit bench;
    bench.Start();
    bench.Ask("ATE1");
    bench.unit.HostWrites("AT+CSQ\r", bench.now);
    EXPECT_EQ(bench.Pass(19), "AT+CSQ\r");
    EXPECT_EQ(bench.Pass(1), "|+CSQ: 18,99||OK|");
    bench.Do({"time reply 0s"});
    bench.unit.HostWrites("AT\r", bench.now);
    EXPECT_EQ(bench.Pass(0), "AT\r|OK|");
}

TEST(Dialogue, CarriesQueuedLinesOutOneAfterTheOther) {
    BenchUnit bench;
    bench.Start();
    bench.Ask("ATE1");
    bench.unit.HostWrites("AT+CSCS=\"UCS2\"\rAT+CSC", bench.now);
    bench.unit.HostWrites("S?\rAT+CSQ\r", bench.now);
    EXPECT_EQ(bench.Pass(500),
              "AT+CSCS=\"UCS2\"\r|OK|AT+CSCS?\r|+CSCS: \"UCS2\"||OK|AT+CSQ\r|+CSQ: 18,99||OK|");
}

TEST(Dialogue, RefusesWhatItDoesNotKnowOrCannotRead) {
    BenchUnit bench;
    bench.Start();
    Converse(bench, {
                        {"AT+NONSENSE", "|ERROR|"},
                        {"AT+CSQ=1", "|ERROR|"},
                        {"AT+CSCS=\"KLINGON\"", "|ERROR|"},
                        {"AT+CLVL=6", "|ERROR|"},
                        {"AT+CLVL=", "|ERROR|"},
                        {"AT+CLVL=1,1", "|ERROR|"},
                        {"AT+ECHO=8", "|ERROR|"},
                        {"AT+ECHO=64,1", "|ERROR|"},
                        {"AT+IPR=115201", "|ERROR|"},
                        {"AT+CGDCONT=17,\"IP\",\"x\"", "|ERROR|"},
                        {"AT+CUSD=1,\"*100#", "|ERROR|"},
                        {"ATQ1", "|ERROR|"},
                        {"ATD12a34;x", "|ERROR|"},
                        {"AT+CSQ;+NONSENSE;+CLVL?", "|+CSQ: 18,99||ERROR|"},
                        {"hello", ""},
                        {"", ""},
                        {"garbage AT+CLVL?", "|+CLVL: 3||OK|"},
                        {"\nAT+CLVX\b?", "|ERROR|"},
                        {"AT+CLVX\bL?", "|+CLVL: 3||OK|"},
                        {"AT+CLVL?" + std::string(504, ' '), "|+CLVL: 3||OK|"},
                        {"AT+CLVL?" + std::string(505, ' '), "|ERROR|"},
                        {"AT" + std::string(100'000, 'x'), "|ERROR|"},
                        {"AT", "|OK|"},
                    });
}

TEST(Dialogue, SpeaksOfErrorsAsAsked) {
    BenchUnit bench;
    bench.Start();
    Converse(bench, {
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

TEST(Dialogue, KeepsThePhonebook) {
    BenchUnit bench;
    bench.Do({"book size 11", "book add \"Анна\" +79161234567 2", "book add Bob 10086 3"});
    bench.Start();
    Converse(
        bench,
        {
            {"AT+CPBS?", "|+CPBS: \"SM\",2,11||OK|"},
            {"AT+CPBR=?", "|+CPBR: (1-11),20,20||OK|"},
            {"AT+CPBR=1,10", "|+CPBR: 2,\"+79161234567\",145,\"????\"|+CPBR: 3,\"10086\",129,\"Bob\"||OK|"},
            {"AT+CSCS=\"UCS2\"", "|OK|"},
            {"AT+CPBR=1,10",
             "|+CPBR: 2,\"+79161234567\",145,\"0410043D043D0430\"|+CPBR: "
             "3,\"10086\",129,\"0042006F0062\"||OK|"},
            {"AT+CPBR=4", "|OK|"},
            {"AT+CPBR=1,12", "|+CME ERROR: invalid index|"},
            {"AT+CPBR=1,2,3", "|ERROR|"},
            {"AT+CPBW=1,\"123\",129,\"00e0\"", "|OK|"},
            {"AT+CPBR=1", "|+CPBR: 1,\"123\",129,\"00E0\"||OK|"},
            {"AT+CPBW=,\"124\",129,\"0041\"", "|OK|"},
            {"AT+CPBR=4", "|+CPBR: 4,\"124\",129,\"0041\"||OK|"},
            {"AT+CPBW=4", "|OK|"},
            {"AT+CPBR=4", "|OK|"},
            {"AT+CPBW=12,\"123\",129,\"0041\"", "|+CME ERROR: invalid index|"},
            {"AT+CPBW=0", "|+CME ERROR: invalid index|"},
            {"AT+CPBW=5,\"123\",129,\"004\"", "|+CME ERROR: invalid characters in text string|"},
            {"AT+CPBW=5,\"12x\",129,\"0041\"", "|+CME ERROR: invalid characters in dial string|"},
            {"AT+CPBW=5,\"123456789012345678901\",129,\"0041\"", "|+CME ERROR: dial string too long|"},
            {"AT+CPBW=5,\"1\",129,\"0430043004300430043004300430043004300430\"",
             "|+CME ERROR: text string too long|"},
            {"AT+CPBW=5,\"1\",130,\"0041\"", "|+CME ERROR: incorrect parameters|"},
            {"AT+CSCS=\"GSM\"", "|OK|"},
            {"AT+CPBW=5,\"1\",129,\"\\22q\\22\"", "|OK|"},
            {"AT+CPBR=5", "|+CPBR: 5,\"1\",129,\"\\22q\\22\"||OK|"},
            {"AT+CPBS=\"ME\"", "|+CME ERROR: operation not supported|"},
        });
}

TEST(Dialogue, FollowsTheNetwork) {
    BenchUnit bench;
    bench.Start();
    bench.Ask("AT+CREG=1");
    bench.Do({"signal 5"});
    EXPECT_EQ(bench.Ask("AT+CSQ"), "|+CSQ: 5,99||OK|");
    bench.Do({"network off"});
    EXPECT_EQ(bench.Pass(0), "|+CREG: 2|");
    EXPECT_EQ(bench.Ask("AT+CSQ"), "|+CSQ: 99,99||OK|");
    EXPECT_EQ(bench.Ask("ATD10086;"), "|+CME ERROR: no network service|");
    EXPECT_EQ(bench.Ask("ATD112;"), "") << "an emergency call needs no registration";
    EXPECT_EQ(bench.Ask("AT+CHUP"), "|NO CARRIER||OK|");
    bench.Do({"network on"});
    EXPECT_EQ(bench.Pass(2000), "|+CREG: 1|");
    EXPECT_EQ(bench.Ask("AT+COPS?"), "|+COPS: 0,2,\"46000\",2||OK|");
}

}  // namespace
}  // namespace varkel::sim
