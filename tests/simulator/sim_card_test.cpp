#include "simulator/sim_card.h"

#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

constexpr std::string_view ok = "|OK|";
constexpr std::string_view wrong = "|+CME ERROR: incorrect password|";
constexpr std::string_view pukRequired = "|+CME ERROR: SIM PUK required|";

TEST(SimCodes, OpenByCpinAndByClck) {
    struct Way {
        std::string_view command;
        bool askedAgain;
    };
    const Way ways[] = {
        {"AT+CPIN=4711", true},
        {"AT+CPIN=\"4711\"", true},
        {"AT+CLCK=\"SC\",0,\"4711\"", false},
        {"AT+CLCK=\"SC\",1,\"4711\"", true},
    };
    for (const Way& way : ways) {
        BenchUnit bench;
        bench.Do({"pin 4711"});
        bench.Start();
        EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: SIM PIN||OK|");
        EXPECT_EQ(bench.Ask("AT+CIMI"), "|+CME ERROR: SIM PIN required|");
        EXPECT_EQ(bench.Ask("AT+CSQ"), "|+CSQ: 99,99||OK|");
        EXPECT_EQ(bench.Ask(way.command), ok) << way.command;
        EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: READY||OK|");
        EXPECT_EQ(bench.Ask("AT+CPIN=4711"), "|+CME ERROR: operation not allowed|");
        for (const std::string& said : bench.said)
            EXPECT_EQ(said.find("4711"), std::string::npos) << said;
        bench.Pass(5000);
        EXPECT_EQ(bench.Ask("AT+CSQ"), "|+CSQ: 18,99||OK|");
        bench.Do({"module restart"});
        bench.Pass(10'000);
        bench.Ask("ATE0");
        EXPECT_EQ(bench.Ask("AT+CPIN?"), way.askedAgain ? "|+CPIN: SIM PIN||OK|" : "|+CPIN: READY||OK|")
            << way.command;
    }
}

TEST(SimCodes, CountWrongOnesDownToThePukAndToTheEnd) {
    BenchUnit bench;
    bench.Do({"pin 4711"});
    bench.Start();
    EXPECT_EQ(bench.Ask("AT+CPIN=123"), "|+CME ERROR: incorrect parameters|") << "no PIN, not counted";
    EXPECT_EQ(bench.Ask("AT+CPIN=12x4"), "|+CME ERROR: incorrect parameters|");
    EXPECT_EQ(bench.Ask("AT+CPIN=1111"), wrong);
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",0,\"2222\""), wrong);
    EXPECT_EQ(bench.unit.Sim().Tries(SimCode::Pin), 1);
    EXPECT_EQ(bench.Ask("AT+CPIN=3333"), pukRequired);
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: SIM PUK||OK|");
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",0,\"4711\""), pukRequired);
    EXPECT_EQ(bench.Ask("AT+CPIN=12345678"), "|+CME ERROR: incorrect parameters|") << "a new PIN is missing";
    EXPECT_EQ(bench.Ask("AT+CPIN=12345678,99"), "|+CME ERROR: incorrect parameters|");
    EXPECT_EQ(bench.unit.Sim().Tries(SimCode::Puk), 10);
    for (int tries = 9; tries > 0; --tries)
        EXPECT_EQ(bench.Ask("AT+CPIN=87654321,9999"), wrong);
    EXPECT_EQ(bench.unit.Sim().Tries(SimCode::Puk), 1);
    EXPECT_EQ(bench.Ask("AT+CPIN=12345678,9999"), ok);
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: READY||OK|");
    EXPECT_EQ(bench.unit.Sim().Tries(SimCode::Puk), 10);
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",2"), "|+CLCK: 1||OK|");
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",0,\"9999\""), ok) << "the new PIN holds";
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",2"), "|+CLCK: 0||OK|");
}

TEST(SimCodes, DieWithTheTenthWrongPuk) {
    BenchUnit bench;
    bench.Do({"puk 11112222"});
    bench.Start();
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(bench.Ask("AT+CPIN=22221111,1234"), wrong);
    EXPECT_EQ(bench.Ask("AT+CPIN=22221111,1234"), "|+CME ERROR: SIM failure|");
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CME ERROR: SIM failure|");
    EXPECT_EQ(bench.Ask("AT+CPIN=11112222,1234"), "|+CME ERROR: incorrect parameters|") << "too late";
    EXPECT_EQ(bench.Ask("AT+CIMI"), "|+CME ERROR: SIM failure|");
}

TEST(SimCodes, OfEveryKindAreAskedForAtTheStart) {
    struct Kind {
        std::string_view ask;
        std::string_view state;
        std::string_view enter;
    };
    const Kind kinds[] = {
        {"puk 11112222", "SIM PUK", "AT+CPIN=11112222,1234"},
        {"ask pin2 5555", "SIM PIN2", "AT+CLCK=\"SC\",0,\"5555\""},
        {"ask puk2 55556666", "SIM PUK2", "AT+CPIN=55556666,7777"},
        {"ask ph-sim 0123456789012345", "PH-SIM pin", "AT+CLCK=\"SC\",0,\"0123456789012345\""},
        {"ask ph-net 123456", "PH-NET pin", "AT+CPIN=123456"},
    };
    for (const Kind& kind : kinds) {
        BenchUnit bench;
        bench.Do({kind.ask});
        bench.Start();
        EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: " + std::string(kind.state) + "||OK|");
        EXPECT_EQ(bench.Ask(kind.enter), ok) << kind.enter;
        EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: READY||OK|") << kind.state;
        bench.Do({"module restart"});
        bench.Pass(10'000);
        bench.Ask("ATE0");
        const bool puk = kind.state == "SIM PUK";
        EXPECT_EQ(bench.Ask("AT+CPIN?"), puk ? "|+CPIN: SIM PIN||OK|" : "|+CPIN: READY||OK|") << kind.state;
    }
}

TEST(SimCodes, LeaveACardInUseAlone) {
    BenchUnit bench;
    bench.Start();
    bench.Do({"pin 4711", "ask ph-net 12345"});
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: READY||OK|");
    bench.Do({"module restart"});
    bench.Pass(10'000);
    bench.Ask("ATE0");
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: SIM PIN||OK|");
    EXPECT_EQ(bench.Ask("AT+CPIN=4711"), ok);
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: PH-NET pin||OK|") << "one after the other";
    EXPECT_EQ(bench.Ask("AT+CPIN=12345"), ok);
    EXPECT_EQ(bench.Ask("AT+CPWD=\"SC\",\"4711\",\"1174\""), ok);
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",0,\"4711\""), wrong);
    EXPECT_EQ(bench.Ask("AT+CLCK=\"SC\",0,\"1174\""), ok);
}

TEST(SimCard, MayBeTakenOutAndPutIn) {
    BenchUnit bench;
    bench.Start();
    bench.Do({"sim out"});
    EXPECT_EQ(bench.Pass(0), "|+CSMINS: 1,0|");
    EXPECT_EQ(bench.Driver(DrvFunction::Get3GSimStatus), 0);
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CME ERROR: SIM not inserted|");
    EXPECT_EQ(bench.Ask("AT+CIMI"), "|+CME ERROR: SIM not inserted|");
    EXPECT_EQ(bench.Ask("AT+CSQ"), "|+CSQ: 99,99||OK|");
    bench.Do({"no-sim-answer not-ready"});
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CPIN: NOT READY||OK|");
    bench.Do({"sim in", "imsi 250011111111111"});
    EXPECT_EQ(bench.Ask("AT+CPIN?"), "|+CSMINS: 1,1||+CME ERROR: SIM busy|");
    bench.Pass(700);
    EXPECT_EQ(bench.Ask("AT+CPBS?"), "|+CME ERROR: SIM busy|") << "known, not read yet";
    bench.Pass(5000);
    EXPECT_EQ(bench.Ask("AT+CIMI"), "|250011111111111||OK|");
    EXPECT_EQ(bench.Ask("AT+CSQ"), "|+CSQ: 18,99||OK|");
}

}  // namespace
}  // namespace varkel::sim
