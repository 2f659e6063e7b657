// The phonebook's commands on a terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/memory_terminal.h"
#include "tests/support/session_bench.h"
#include "ui/headless_commands.h"

namespace varkel::test {
namespace {

TEST(HeadlessPhoneBookTest, ListsAddsFindsAndRemoves) {
    SessionBench bench;
    bench.unit.Command("book add \"王五\" 10010");
    bench.Start("");
    bench.dialog->OpenModule();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    bench.RunFor(1000);
    MemoryTerminal terminal(bench.loop);
    HeadlessCommands commands(*bench.dialog, bench.windows, bench.codePage, terminal);
    const auto answer = [&](const char* line) {
        commands.Run(line);
        bench.RunFor(3000);
        std::string text;
        for (const std::string& each : terminal.TakeLines())
            text += (text.empty() ? "" : "|") + each;
        return text;
    };
    const std::pair<const char*, const char*> dialogue[] = {
        {"add \"Anna Maria\" +491", "[phonebook] added"},
        {"add-sim Bob  10086", "[phonebook] added"},
        {"phonebook",
         "[phonebook] 3 entries|  1  Anna Maria  +491|  2  王五  10010  (SIM)|  3  Bob  10086  (SIM)"},
        {"phonebook \"a m\"", "[phonebook] 1 entry|  1  Anna Maria  +491"},
        {"find 10086", "[phonebook] 10086 is Bob"},
        {"find 112", "[phonebook] 112 is 112"},
        {"add Bob", "[error] a name and a number are wanted"},
        {"add-sim Bob x", "[error] that is no number"},
        {"remove 2", "[error] the list has no entry \"2\""},
        {"change 1 \"Ann\" 111", "[phonebook] changed"},
        {"find 111", "[phonebook] 111 is Ann"},
        {"phonebook Ann", "[phonebook] 1 entry|  1  Ann  111"},
        {"remove 1", "[phonebook] removed"},
        {"remove 1", "[error] that entry is gone"},
        {"phonebook 10", "[phonebook] 2 entries|  1  王五  10010  (SIM)|  2  Bob  10086  (SIM)"},
        {"remove 2", "[phonebook] removed"},
        {"find", "[error] usage: find NUMBER"},
    };
    for (const auto& [line, expected] : dialogue)
        EXPECT_EQ(answer(line), expected) << line;
    EXPECT_THAT(answer("help"), testing::HasSubstr("  add-sim NAME NUMBER   a new entry on the SIM"));
}

}  // namespace
}  // namespace varkel::test
