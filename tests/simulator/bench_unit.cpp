#include "tests/simulator/bench_unit.h"

#include <gtest/gtest.h>
#include <sstream>

namespace varkel::sim::test {

BenchUnit::BenchUnit(const UnitConfig& config, std::uint64_t seed) : unit(config, seed) {
    UnitHooks hooks;
    hooks.say = [this](Voice voice, std::string_view text) {
        said.emplace_back(text);
        if (voice == Voice::Network) networkSaid.emplace_back(text);
    };
    hooks.command = [this](std::string_view text) { commands.emplace_back(text); };
    hooks.sent = [this](std::string_view pdu) { sent.emplace_back(pdu); };
    hooks.dialLine = [this](std::string_view line) { dialled += std::string(line) + "|"; };
    hooks.dialEnd = [this](int code) { dialled += "=" + std::to_string(code); };
    hooks.restart = [this] { ++restarts; };
    unit.SetHooks(std::move(hooks));
}

void BenchUnit::Start() {
    Driver(DrvFunction::Set3GPower, 1);
    Pass(10'000);
    Ask("ATE0");
}

std::vector<std::string> BenchUnit::Pieces(Millis time) {
    std::vector<std::string> pieces;
    const Millis end = now + time;
    while (true) {
        for (std::string piece = unit.TakeOutput(now); !piece.empty(); piece = unit.TakeOutput(now))
            pieces.push_back(std::move(piece));
        const auto next = unit.NextDeadline();
        if (!next || *next > end) break;
        EXPECT_GE(*next, now) << "a deadline in the past that nothing settles";
        now = *next;
    }
    now = end;
    return pieces;
}

std::string BenchUnit::Pass(Millis time) {
    std::string all;
    for (const std::string& piece : Pieces(time))
        all += piece;
    return WithBars(all);
}

std::string BenchUnit::Write(std::string_view bytes, Millis time) {
    unit.HostWrites(bytes, now);
    return Pass(time);
}

void BenchUnit::Do(std::initializer_list<std::string_view> lines) {
    for (const std::string_view line : lines) {
        const CommandResult result = unit.Command(line, now);
        EXPECT_TRUE(result.well) << line << ": " << result.text;
    }
}

void BenchUnit::Converse(std::initializer_list<Exchange> dialogue) {
    for (const auto& [line, answer, time] : dialogue) {
        if (line.starts_with('!')) Do({line.substr(1)});
        const bool asks = !line.empty() && !line.starts_with('!');
        EXPECT_EQ(asks ? Ask(line, time) : Pass(time), answer) << line;
    }
}

void BenchUnit::Restart() {
    Do({"module restart"});
    Pass(10'000);
    Ask("ATE0");
}

int BenchUnit::Driver(DrvFunction function, int value) {
    EXPECT_TRUE(unit.Call(function, value, now));
    return value;
}

std::string WithBars(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool lineEnd = bytes.substr(i, 2) == "\r\n";
        text += lineEnd ? '|' : bytes[i];
        i += lineEnd ? 1 : 0;
    }
    return text;
}

std::string Repeated(std::string_view text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

std::vector<std::string> Lines(std::string_view bars) {
    std::istringstream text{std::string(bars)};
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line, '|');)
        lines.push_back(line);
    return lines;
}

}  // namespace varkel::sim::test
