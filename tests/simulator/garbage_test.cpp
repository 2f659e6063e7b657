// Nonsense from every side: the unit stays alive, bounded and repeatable.
#include <algorithm>
#include <array>
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

constexpr std::array fragments{
    "AT", "\x1A", "\x1B",      "\r",      "\r\n",   "\"",
    ";",  "\b",   "\xFF\x01x", "ATD1;\r", "ATE1\r", "0011000D91896745230189F70008000400410042",
};

constexpr std::array arguments{
    "0",         "1",        "2",       "19",       "250",      "1234", "99999999999",
    "\"SC\"",    "\"SM\"",   "\"GSM\"", "\"1234\"", "\"UCS2\"", "0041", "\"0041\"",
    "\"*100#\"", "\"+123\"", "",        "-1",       "x"};

constexpr std::array consoleLines{
    "sim out",     "sim in",       "pin 1234",    "pin off",    "puk 12345678",  "usb down",
    "usb up",      "vanish",       "appear",      "module on",  "module off",    "module restart",
    "network off", "network on",   "split 3",     "split 0",    "noise 0.1",     "noise 0",
    "late 2s",     "late 0",       "lose 0.5",    "lose 0",     "double 1",      "double 0",
    "signal vary", "book add A 1", "book size 3", "urc RING",   "ask pin2 1234", "raw \\r\\n> ",
    "calm",        "state",        "help",        "ussd x",     "time reply 0s", "call 1",
    "call hidden", "hangup",       "answer",      "ussd-ask y", "busy",
};

template <class Array>
std::string OneOf(Random& random, const Array& array) {
    return array[random.Below(array.size())];
}

// A line that begins well, and may go on so.
std::string RandomCommand(Random& random) {
    const std::array tables{GeneralCommands(), SimCommands(),  PhonebookCommands(),
                            NetworkCommands(), CallCommands(), MessageCommands()};
    const auto table = tables[random.Below(tables.size())];
    std::string line = "AT" + std::string(table[random.Below(table.size())].name);
    constexpr std::array forms{"", "?", "=?", "=", "="};
    line += OneOf(random, forms);
    for (std::uint64_t count = line.ends_with('=') ? random.Below(5) : 0; count > 0; --count)
        line += OneOf(random, arguments) + (count > 1 ? "," : "");
    return line + "\r";
}

std::string RandomText(Random& random) {
    std::string text;
    for (std::uint64_t parts = random.Below(6); parts > 0; --parts) {
        if (random.Chance(0.05)) {
            text += static_cast<char>(random.Below(256));
        } else {
            text += random.Chance(0.7) ? RandomCommand(random) : OneOf(random, fragments);
        }
    }
    return text;
}

// Everything that came out, in one number.
std::uint64_t Torment(std::uint64_t seed) {
    Random random(seed);
    BenchUnit bench({}, seed);
    bench.Start();
    std::uint64_t trace = 0;
    const auto note = [&trace](std::string_view bytes) {
        for (const char byte : bytes)
            trace = trace * 31 + static_cast<unsigned char>(byte);
    };
    for (int i = 0; i < 400; ++i) {
        bench.unit.HostWrites(RandomText(random), bench.now);
        if (random.Chance(0.2)) {
            const auto line = consoleLines[random.Below(consoleLines.size())];
            note(bench.unit.Command(line, bench.now).text);
        }
        // Most of what the console breaks would stay broken.
        if (random.Chance(0.2)) bench.Do({"module on", "appear", "usb up", "sim in", "network on"});
        if (random.Chance(0.05)) {
            int value = static_cast<int>(random.Below(3));
            bench.unit.Call(drvTable[random.Below(drvTable.size())].function, value, bench.now);
        }
        if (random.Chance(0.1)) bench.unit.GetModem().Deliver(RandomText(random), bench.now);
        note(bench.Pass(random.Below(3000)));
    }
    EXPECT_GT(bench.commands.size(), 200u) << "most of it was lost";
    return trace;
}

TEST(Garbage, LeavesTheUnitAliveAndTheRunRepeatable) {
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        const std::uint64_t trace = Torment(seed);
        if (seed % 10 != 0) continue;
        EXPECT_EQ(trace, Torment(seed)) << "seed " << seed;
    }
}

TEST(Garbage, OnTheLineEndsWithTheNextCommand) {
    Random random(5);
    for (int round = 0; round < 200; ++round) {
        BenchUnit bench({}, 1);
        bench.Start();
        for (int i = 0; i < 20; ++i) {
            bench.unit.HostWrites(RandomText(random), bench.now);
            bench.Pass(200);
        }
        bench.unit.HostWrites("\x1B\r", bench.now);
        bench.Pass(60'000);
        bench.unit.HostWrites("\x1B\rATE0\r", bench.now);
        bench.Pass(5000);
        EXPECT_EQ(bench.Ask("AT+CMGF?"), "|+CMGF: 0||OK|") << "round " << round;
    }
}

TEST(Garbage, ThatNeverEndsIsBounded) {
    BenchUnit bench;
    bench.Start();
    std::string flood;
    for (int i = 0; i < 20'000; ++i)
        flood += "AT+CSQ\r";
    bench.unit.HostWrites(flood, bench.now);
    const std::string answer = bench.Pass(3'600'000);
    const auto answers = static_cast<std::size_t>(std::count(answer.begin(), answer.end(), ':'));
    EXPECT_LE(answers, Modem::longestInput / 7 + 1) << "what does not fit is lost";
    EXPECT_GT(answers, 1000u);
    bench.Ask("");
    EXPECT_EQ(bench.Ask("AT"), "|OK|");
}

}  // namespace
}  // namespace varkel::sim
