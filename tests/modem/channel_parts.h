// A link and an AT channel with all that they need; nothing is open yet.
#pragma once

#include "modem/at_channel.h"
#include "platform/log.h"
#include "platform/message_loop.h"
#include "tests/support/memory_files.h"
#include "tests/support/memory_windows.h"
#include "tests/support/recorded_notices.h"
#include "tests/support/table_driver.h"
#include "tests/support/virtual_runtime.h"
#include "tests/support/virtual_serial.h"

namespace varkel::test {

template <class Time, class Files>
struct ChannelParts {
    Time runtime;
    Files files;
    Log log{runtime, files};
    MessageLoop loop{runtime};
    TableDriver driver{};
    MemoryWindows windows{loop};
    RecordedNotices notices{};
    VirtualSerial serial{runtime};
    CCESeries link{runtime, serial, notices, log};
    CATChannel channel{runtime, driver, windows, log};
};

struct VirtualChannel : ChannelParts<VirtualRuntime, MemoryFiles> {
    explicit VirtualChannel(std::uint64_t seed = 1) : ChannelParts{VirtualRuntime(seed), MemoryFiles()} {}
};

}  // namespace varkel::test
