// The data link and the unit's orders on a terminal.
#include <gtest/gtest.h>

#include "tests/support/memory_terminal.h"
#include "tests/support/session_bench.h"
#include "ui/headless_commands.h"

namespace varkel::test {
namespace {

TEST(HeadlessDataTest, DialsTestsAndObeysTheUnit) {
    SessionBench bench;
    bench.dialUp.connects = true;
    bench.Start("");
    bench.dialog->OpenModule();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    MemoryTerminal terminal(bench.loop);
    HeadlessCommands commands(*bench.dialog, bench.windows, bench.codePage, terminal);
    const auto answer = [&](const char* line) {
        commands.Run(line);
        bench.RunFor(6000);
        std::string text;
        for (const std::string& each : terminal.TakeLines())
            text += (text.empty() ? "" : "|") + each;
        return text;
    };
    const std::pair<const char*, const char*> dialogue[] = {
        {"data", "[data] connected, CMCC, access point \"CMNET\""},
        {"test", "[data] the link works"},
        {"data off", ""},
        {"data", "[data] off, CMCC, access point \"CMNET\""},
        {"test", "[data] nobody answers"},
        {"data on", ""},
        {"key 5G", "[error] not a key of the unit"},
        {"post 3Gwindow_HIDE", ""},
    };
    for (const auto& [line, expected] : dialogue)
        EXPECT_EQ(answer(line), expected) << line;
    EXPECT_TRUE(bench.dialog->Data().Connected());
    EXPECT_TRUE(bench.dialog->State().m_bWindowHidden);
}

}  // namespace
}  // namespace varkel::test
