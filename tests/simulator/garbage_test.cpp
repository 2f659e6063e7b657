// Nonsense from every side: the unit stays alive, bounded and repeatable.
#include <algorithm>
#include <array>
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

const auto texts = test::Lines(
    "AT|\x1A|\x1B|\r|\r\n|\"|;|\b|\xFF\x01x|ATD1;\r|ATE1\r|0011000D91896745230189F70008000400410042");
const auto arguments = test::Lines(
    "|?|=?|=|=0|=1|=2|=19|=250|=1234|=99999999999|=-1|=x|=0041|=\"SC\"|=\"SM\"|=\"GSM\"|=\"UCS2\"|=\"0041\"|"
    "=\"*100#\"|=\"+123\"|=1,1|=1,10|=\"SC\",0,\"1234\"|=\"SC\",2|=,\"1\",129,\"0041\"|=1,\"*100#\",15|=,,,");
const auto consoleLines = test::Lines(
    "sim out|sim in|pin 1234|pin off|puk 12345678|ask pin2 1234|usb down|usb up|vanish|appear|module on|"
    "module off|module restart|network off|network on|signal vary|split 3|split 0|noise 0.1|noise 0|late 2s|"
    "late 0|lose 0.5|lose 0|double 1|double 0|calm|time reply 0s|book add A 1|book size 3|urc RING|"
    "raw \\r\\n> |state|help|ussd x|ussd-ask y|call 1|call hidden|hangup|answer|busy|sms 1 x|sms-raw 08");

template <class Array>
auto OneOf(Random& random, const Array& all) {
    return all[random.Below(all.size())];
}

std::string RandomText(Random& random) {
    const std::array tables{GeneralCommands(), SimCommands(),  PhonebookCommands(),
                            NetworkCommands(), CallCommands(), MessageCommands()};
    std::string text;
    for (std::uint64_t parts = random.Below(6); parts > 0; --parts) {
        const std::string name(OneOf(random, OneOf(random, tables)).name);
        text += random.Chance(0.7) ? "AT" + name + OneOf(random, arguments) + "\r" : OneOf(random, texts);
        if (random.Chance(0.05)) text += static_cast<char>(random.Below(256));
    }
    return text;
}

// Everything that came out.
std::string Torment(std::uint64_t seed) {
    Random random(seed);
    BenchUnit bench({}, seed);
    bench.Start();
    std::string trace;
    for (int i = 0; i < 400; ++i) {
        bench.unit.HostWrites(RandomText(random), bench.now);
        if (random.Chance(0.2)) trace += bench.Command(OneOf(random, consoleLines));
        // Most of what the console breaks would stay broken.
        if (random.Chance(0.2)) bench.Do({"module on", "appear", "usb up", "sim in", "network on"});
        trace += bench.Pass(random.Below(3000));
    }
    EXPECT_GT(bench.commands.size(), 200u) << "most of it was lost";
    // Whatever was left open ends with ESC, and the next line is a command again.
    bench.Do({"calm", "module on", "appear", "usb up", "time reply 0s"});
    bench.Write("\x1B\r", 60'000);
    bench.Write("\x1B\r", 5000);
    EXPECT_NE(bench.Ask("AT+CSQ").find("|+CSQ: "), std::string::npos) << "seed " << seed;
    return trace;
}

TEST(Garbage, LeavesTheUnitAliveAndTheRunRepeatable) {
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        const std::string trace = Torment(seed);
        EXPECT_TRUE(seed % 10 != 0 || trace == Torment(seed)) << "seed " << seed;
    }
}

TEST(Garbage, ThatNeverEndsIsBounded) {
    BenchUnit bench;
    bench.Start();
    const std::string answer = bench.Write(test::Repeated("AT+CSQ\r", 20'000), 3'600'000);
    const auto answers = static_cast<std::size_t>(std::count(answer.begin(), answer.end(), ':'));
    EXPECT_LE(answers, Modem::longestInput / 7 + 1) << "what does not fit is lost";
    EXPECT_GT(answers, 1000u);
    bench.Ask("");
    EXPECT_EQ(bench.Ask("AT"), "|OK|");
}

}  // namespace
}  // namespace varkel::sim
