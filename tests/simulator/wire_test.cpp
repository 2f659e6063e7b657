#include "simulator/wire.h"

#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

TEST(Wire, SplitsIntoPiecesThatComeBackToBack) {
    BenchUnit bench;
    bench.Start();
    bench.Do({"split 5"});
    bench.unit.HostWrites("AT+CSQ\r", bench.now);
    EXPECT_EQ(bench.Pieces(20), (std::vector<std::string>{"\r\n+CS", "Q: 18", ",99\r\n", "\r\nOK\r", "\n"}));
    bench.Do({"split 0"});
    bench.unit.HostWrites("AT+CSQ\r", bench.now);
    EXPECT_EQ(bench.Pieces(20), (std::vector<std::string>{"\r\n+CSQ: 18,99\r\n\r\nOK\r\n"}));
}

TEST(Wire, DelaysEverythingAndKeepsTheOrder) {
    BenchUnit bench;
    bench.Start();
    bench.Do({"late 2s"});
    bench.unit.HostWrites("AT+CSQ\r", bench.now);
    EXPECT_EQ(bench.Pass(2019), "");
    EXPECT_EQ(bench.Pass(1), "|+CSQ: 18,99||OK|");
    bench.unit.HostWrites("AT+CLVL?\r", bench.now);
    bench.Pass(100);
    bench.Do({"late 0"});
    bench.unit.HostWrites("AT+CSQ\r", bench.now);
    EXPECT_EQ(bench.Pass(3000), "|+CLVL: 3||OK||+CSQ: 18,99||OK|");
}

TEST(Wire, LosesAndRepeatsWholeAnswers) {
    BenchUnit bench;
    bench.Start();
    bench.Ask("ATE1");
    bench.Do({"lose 1"});
    EXPECT_EQ(bench.Ask("AT"), "AT\r") << "the echo is no answer";
    bench.Do({"lose 0", "double 1"});
    EXPECT_EQ(bench.Ask("AT"), "AT\r|OK||OK|");
    bench.Do({"calm"});
    EXPECT_EQ(bench.Ask("AT"), "AT\r|OK|");
}

TEST(Wire, GarblesAsOftenAsAskedAndTheSameForTheSameSeed) {
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

TEST(Wire, IsBounded) {
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
