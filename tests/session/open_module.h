// A program whose module is open, registered and at rest.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/session_bench.h"

namespace varkel::test {

struct OpenBench : SessionBench {
    explicit OpenBench(std::uint64_t seed = 1) : SessionBench(seed) {
        OpenModule();
        unit.TakeTrace();
    }

    std::vector<SmsRecord> Inbox() { return dialog->Messages().Boxes().inbox.FindSmsRecord(); }
    std::vector<SmsRecord> Outbox() { return dialog->Messages().Boxes().outbox.FindSmsRecord(); }
};

}  // namespace varkel::test
