#include "simulator/console.h"

#include <gtest/gtest.h>

#include "simulator/bytes.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

TEST(Console, ExplainsWhatItDoesNotUnderstand) {
    BenchUnit bench;
    bench.Start();
    constexpr std::string_view lines =
        "nonsense|call|call 12a|call 123456789012345678901|hangup|answer|busy|ussd-end now|sim|"
        "sim sideways|pin 12|pin 12345678901|pin abcd|puk 1234567|ask|ask pin2 1|ask pin 1234|signal 32|"
        "signal -1|signal 4x|network|module maybe|usb|vanish now|power|power 14x|"
        "power 99999999999999999999|driver fail Everything|noise 2|noise x|noise nan|split -1|split 5000|"
        "late soon|late 25h|lose|urc|raw \\q|raw \\x4|imsi 12a456|imei 1|book|book add Bob|"
        "book add \"Bob 123|book add Bob 12x|book add Bob 123 999|"
        "book add \"a name that is far too long\" 123|book size 9999|time boot soon|time breakfast 1s|"
        "start-report sometimes|no-sim-answer maybe|state please|data drop|data maybe|help nonsense";
    for (const std::string& line : test::Lines(lines)) {
        const CommandResult result = bench.unit.Command(line, bench.now);
        EXPECT_FALSE(result.well) << line;
        EXPECT_FALSE(result.text.empty()) << line;
    }
    EXPECT_EQ(bench.unit.Head().supplyValue, 25) << "bad input changes nothing";
    EXPECT_TRUE(bench.unit.Command("   ", bench.now).well);
    EXPECT_EQ(bench.unit.Command("sim sideways", bench.now).text, "usage: sim in|out");
    EXPECT_FALSE(bench.unit.Command(std::string(5000, 'x'), bench.now).well);
}

TEST(Console, HelpsWithEveryCommand) {
    BenchUnit bench;
    const std::string help = bench.unit.Command("help", bench.now).text;
    for (const auto table : {UnitConsole(), LineConsole(), CallConsole(), MessageConsole(), StateConsole()}) {
        for (const ConsoleCommand& command : table) {
            EXPECT_NE(help.find("\n" + std::string(command.name) + " "), help.find(command.name))
                << command.name;
            const CommandResult one = bench.unit.Command("help " + std::string(command.name), bench.now);
            EXPECT_TRUE(one.well);
            EXPECT_NE(help.find(one.text), std::string::npos) << command.name;
        }
    }
}

TEST(Console, ShowsTheStateOfThings) {
    BenchUnit bench;
    EXPECT_NE(bench.unit.Command("state", bench.now).text.find("module   off\n"), std::string::npos);
    bench.Start();
    bench.Do({"noise 0.001", "split 3", "late 1.5s", "signal 12", "book add Bob 123"});
    const std::string state = bench.unit.Command("state", bench.now).text;
    for (const std::string_view part :
         {"module   running", "READY", "registered, signal 12, no call, no data call", "1 of 250 entries",
          "supply 25", "split 3, noise 0.001, late 1.5s, lose 0, double 0"}) {
        EXPECT_NE(state.find(part), std::string::npos) << part << "\n" << state;
    }
    EXPECT_EQ(bench.unit.Command("book list", bench.now).text, "1 of 250 entries\n1  123  Bob");
}

TEST(Console, SpeaksForTheModem) {
    BenchUnit bench;
    bench.Start();
    bench.Do({"urc RING", "raw \\r\\n> \\x41\\\\\\\""});
    EXPECT_EQ(bench.Pass(0), "|RING||> A\\\"");
    EXPECT_EQ(bench.said.back(), "RING");
}

TEST(Words, AreTakenWithTheirQuotesAndEscapes) {
    std::string_view text = "  one \"two \\\"and\\\" a half\" three ";
    EXPECT_EQ(TakeWord(text), "one");
    EXPECT_EQ(TakeWord(text), "two \"and\" a half");
    EXPECT_EQ(TakeWord(text), "three");
    EXPECT_EQ(TakeWord(text), std::nullopt);
    std::string_view open = "\"never closed\\\"";
    EXPECT_EQ(TakeWord(open), std::nullopt);
    EXPECT_EQ(Visible("\r\n+CSQ: 1\r\n\r\nOK\r\n"), "+CSQ: 1 | OK");
    EXPECT_EQ(Visible(std::string("a\0\x1A", 3)), "a\\x00\\x1A");
    EXPECT_EQ(Visible("а\xFF"), "\\xD0\\xB0\\xFF") << "not UTF-8";
    EXPECT_EQ(Visible("\xC2\x9B"), "\\xC2\\x9B") << "would drive a terminal";
    EXPECT_EQ(Visible("абв", 3), "а...") << "cut at a character";
}

}  // namespace
}  // namespace varkel::sim
