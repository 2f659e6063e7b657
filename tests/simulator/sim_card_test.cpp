#include "simulator/sim_card.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using testing::Each;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view ok = "|OK|";
constexpr std::string_view wrong = "|+CME ERROR: incorrect password|";
constexpr std::string_view noCode = "|+CME ERROR: incorrect parameters|";
constexpr std::string_view failure = "|+CME ERROR: SIM failure|";
constexpr std::string_view ready = "|+CPIN: READY||OK|";
constexpr std::string_view pinNeeded = "|+CPIN: SIM PIN||OK|";

TEST(SimCodes, OfEveryKindAreAskedForAtTheStart) {
    struct Case {
        std::string_view setup;
        std::string_view asked;
        std::string_view enter;
        std::string_view askedNextTime;
    };
    const Case cases[] = {
        {"pin 4711", pinNeeded, "AT+CPIN=4711", pinNeeded},
        {"pin 4711", pinNeeded, "AT+CPIN=\"4711\"", pinNeeded},
        {"pin 4711", pinNeeded, "AT+CLCK=\"SC\",0,\"4711\"", ready},
        {"pin 4711", pinNeeded, "AT+CLCK=\"SC\",1,\"4711\"", pinNeeded},
        {"puk 11112222", "|+CPIN: SIM PUK||OK|", "AT+CPIN=11112222,1234", pinNeeded},
        {"ask pin2 5555", "|+CPIN: SIM PIN2||OK|", "AT+CLCK=\"SC\",0,\"5555\"", ready},
        {"ask puk2 55556666", "|+CPIN: SIM PUK2||OK|", "AT+CPIN=55556666,7777", ready},
        {"ask ph-sim 0123456789012345", "|+CPIN: PH-SIM pin||OK|", "AT+CLCK=\"SC\",0,\"0123456789012345\"",
         ready},
        {"ask ph-net 123456", "|+CPIN: PH-NET pin||OK|", "AT+CPIN=123456", ready},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.enter);
        test::BenchUnit bench;
        bench.Do({each.setup});
        bench.Start();
        bench.Converse({{"AT+CPIN?", each.asked}, {each.enter, ok}, {"AT+CPIN?", ready}});
        EXPECT_THAT(bench.said, Each(Not(HasSubstr(std::string(each.setup.substr(each.setup.rfind(' ')))))));
        bench.Restart();
        EXPECT_EQ(bench.Ask("AT+CPIN?"), each.askedNextTime);
    }
}

struct SimTest : testing::Test, test::BenchUnit {};

TEST_F(SimTest, CountsWrongCodesDownToThePukAndToTheEnd) {
    Do({"pin 4711"});
    Start();
    Converse({
        {"AT+CIMI", "|+CME ERROR: SIM PIN required|"},
        {"AT+CSQ", "|+CSQ: 99,99||OK|"},
        {"AT+CPIN=123", noCode},  // and not counted
        {"AT+CPIN=12x4", noCode},
        {"AT+CPIN=1111", wrong},
        {"AT+CLCK=\"SC\",0,\"2222\"", wrong},
        {"AT+CPIN=3333", "|+CME ERROR: SIM PUK required|"},
        {"AT+CPIN?", "|+CPIN: SIM PUK||OK|"},
        {"AT+CLCK=\"SC\",0,\"4711\"", "|+CME ERROR: SIM PUK required|"},
        {"AT+CPIN=12345678", noCode},  // a new PIN is missing
        {"AT+CPIN=12345678,99", noCode},
    });
    for (int tries = 9; tries > 0; --tries)
        EXPECT_EQ(Ask("AT+CPIN=87654321,9999"), wrong);
    EXPECT_EQ(Ask("AT+CPIN=12345678,9999"), ok);
    EXPECT_EQ(unit.Sim().Tries(SimCode::Puk), 10);
    Converse({
        {"AT+CPIN?", ready},
        {"AT+CPIN=9999", "|+CME ERROR: operation not allowed|"},
        {"AT+CLCK=\"SC\",2", "|+CLCK: 1||OK|"},
        {"AT+CLCK=\"SC\",0,\"9999\"", ok},
        {"AT+CLCK=\"SC\",2", "|+CLCK: 0||OK|"},
        {"!puk 11112222", ""},
    });
    Restart();
    for (int tries = 9; tries > 0; --tries)
        EXPECT_EQ(Ask("AT+CPIN=22221111,1234"), wrong);
    Converse({
        {"AT+CPIN=22221111,1234", failure},
        {"AT+CPIN?", failure},
        {"AT+CPIN=11112222,1234", noCode},  // too late
        {"AT+CIMI", failure},
    });
}

TEST_F(SimTest, MayBeTakenOutAndPutIn) {
    constexpr std::string_view absent = "|+CME ERROR: SIM not inserted|";
    Start();
    EXPECT_EQ(Driver(DrvFunction::Get3GSimStatus), 1);
    Do({"sim out"});
    EXPECT_EQ(Driver(DrvFunction::Get3GSimStatus), 0);
    Converse({
        {"", "|+CSMINS: 1,0|", 0},
        {"AT+CPIN?", absent},
        {"AT+CIMI", absent},
        {"AT+CSQ", "|+CSQ: 99,99||OK|"},
        {"!no-sim-answer not-ready", ""},
        {"AT+CPIN?", "|+CPIN: NOT READY||OK|"},
        {"!imsi 250011111111111", ""},
        {"!sim in", "|+CSMINS: 1,1|"},
        {"AT+CPIN?", "|+CME ERROR: SIM busy|", 700},
        {"AT+CPBS?", "|+CME ERROR: SIM busy|", 5500},  // known, not read yet
        {"AT+CIMI", "|250011111111111||OK|"},
        {"AT+CSQ", "|+CSQ: 18,99||OK|"},
    });
}

}  // namespace
}  // namespace varkel::sim
