#include "simulator/console.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/bytes.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using testing::HasSubstr;

struct Console : testing::Test, test::BenchUnit {};

TEST_F(Console, RefusesWhatItDoesNotUnderstandAndSaysWhy) {
    Start();
    constexpr std::string_view lines =
        "nonsense|call|call 12a|call 123456789012345678901|hangup|answer|busy|ussd-end now|sim|"
        "sim sideways|pin 12|pin 12345678901|pin abcd|puk 1234567|ask|ask pin2 1|ask pin 1234|signal 32|"
        "signal -1|signal 4x|network|module maybe|usb|vanish now|power|power 14x|"
        "power 99999999999999999999|driver fail Everything|noise 2|noise x|noise nan|split -1|split 5000|"
        "late soon|late 25h|lose|urc|raw \\q|raw \\x4|imsi 12a456|imei 1|book|book add Bob|"
        "book add \"Bob 123|book add Bob 12x|book add Bob 123 999|"
        "book add \"a name that is far too long\" 123|book size 9999|time boot soon|time breakfast 1s|"
        "start-report sometimes|no-sim-answer maybe|state please|data drop|data maybe|help nonsense|"
        "sms|sms 10086|sms + x|sms Имя x|sms 123456789012345678901 x|sms 7bit 10086|sms 7bit 10086 Я|sms \"a "
        "long name for one\" x|sms 10086 \"open|"
        "sms 10086 \"one\" two|sms-raw|sms-raw 0|sms-raw xy|sms-burst|sms-burst 0|sms-burst 401|"
        "sms-burst 3 \"|messages all|sms-clear 1|sent x|sms-fail|sms-fail -1|sms-fail 9999|sms-late soon|"
        "prompt x";
    std::vector<std::string> all = test::Lines(lines);
    all.insert(all.end(), {"sms 10086 " + std::string(1531, 'x'), "sms-raw " + std::string(512, '0'),
                           std::string(5000, 'x')});
    for (const std::string& line : all) {
        const CommandResult result = unit.Command(line, now);
        EXPECT_FALSE(result.well) << line;
        EXPECT_FALSE(result.text.empty()) << line;
    }
    EXPECT_EQ(Command("sim sideways"), "usage: sim in|out");
    EXPECT_THAT(Command("state"), HasSubstr("supply 25"));
    EXPECT_EQ(unit.Messages().Waiting(), 0u);
}

TEST_F(Console, ShowsTheStateOfThings) {
    EXPECT_THAT(Command("state"), HasSubstr("module   off\n"));
    Start();
    Do({"   ", "noise 0.001", "split 3", "late 1.5s", "signal 12", "book add Bob 123"});
    for (const char* const part :
         {"module   running", "READY", "registered, signal 12, no call, no data call", "1 of 250 entries",
          "supply 25", "split 3, noise 0.001, late 1.5s, lose 0, double 0"})
        EXPECT_THAT(Command("state"), HasSubstr(part));
    EXPECT_EQ(Command("book list"), "1 of 250 entries\n1  123  Bob");
    EXPECT_THAT(Command("help"), HasSubstr("\n" + Command("help book")));
    Do({"calm", "urc RING", "raw \\r\\n> \\x41\\\\\\\""});
    EXPECT_EQ(Pass(0), "|RING||> A\\\"");
}

TEST(VisibleText, IsOneLineThatDrivesNoTerminal) {
    EXPECT_EQ(Visible("\r\n+CSQ: 1\r\n\r\nOK\r\n"), "+CSQ: 1 | OK");
    EXPECT_EQ(Visible(std::string("a\0\x1A", 3)), "a\\x00\\x1A");
    EXPECT_EQ(Visible("а\xFF"), "\\xD0\\xB0\\xFF") << "not UTF-8";
    EXPECT_EQ(Visible("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(Visible("абв", 3), "а...") << "cut at a character";
}

}  // namespace
}  // namespace varkel::sim
