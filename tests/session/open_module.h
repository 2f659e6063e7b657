// A program whose module is open, registered and at rest, and what several tests of the session look at.
#pragma once

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/session_bench.h"

namespace varkel::test {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct OpenBench : SessionBench {
    explicit OpenBench(std::uint64_t seed = 1, const sim::UnitConfig& config = {})
        : SessionBench(seed, config) {
        OpenModule();
        unit.TakeTrace();
    }

    std::vector<SmsRecord> Inbox() { return dialog->Messages().Boxes().inbox.FindSmsRecord(); }
    std::vector<SmsRecord> Outbox() { return dialog->Messages().Boxes().outbox.FindSmsRecord(); }
};

// The lines that begin with one of these words.
inline std::vector<std::string> StartingWith(const std::vector<std::string>& words,
                                             std::vector<std::string> lines) {
    std::erase_if(lines, [&](const std::string& line) {
        return std::none_of(words.begin(), words.end(),
                            [&](const std::string& word) { return line.starts_with(word); });
    });
    return lines;
}

// The module was shut down in order, and nothing of it is left.
inline void ExpectClosed(SessionBench& bench, const std::string& where) {
    EXPECT_EQ(bench.Mode(), ScreenMode::Closed) << where;
    EXPECT_EQ(Settings(bench.registry).ReadOpenFlag(), 0u) << where;
    EXPECT_EQ(bench.unit.SuspendLocks(), 0) << where;
    EXPECT_FALSE(bench.serial.Open()) << where;
}

}  // namespace varkel::test
