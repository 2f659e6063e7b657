// A program whose module is open, registered and at rest.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/session_bench.h"

namespace varkel::test {

struct OpenBench : SessionBench {
    explicit OpenBench(std::uint64_t seed = 1) : SessionBench(seed) {
        Start("");
        dialog->OpenModule();
        EXPECT_TRUE(RunUntilOpenEnds());
        RunFor(1000);
        unit.TakeTrace();
    }

    // What the modem was sent since, without the signal poll.
    std::vector<std::string> Commands() {
        std::vector<std::string> commands;
        for (std::string& line : unit.TakeTrace()) {
            if (line.starts_with("AT") && line != "AT+CSQ") commands.push_back(std::move(line));
        }
        return commands;
    }

    std::vector<SmsRecord> Inbox() { return dialog->Messages().Boxes().inbox.FindSmsRecord(); }
    std::vector<SmsRecord> Outbox() { return dialog->Messages().Boxes().outbox.FindSmsRecord(); }
};

}  // namespace varkel::test
