#include "platform/linux/console_terminal.h"

#include <fcntl.h>
#include <optional>
#include <unistd.h>
#include <vector>

#include "tests/platform/dialog_fixture.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

class ConsoleTerminalTest : public test::DialogFixture {
  protected:
    ConsoleTerminalTest() {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        toProgram.Reset(ends[1]);
        input.Reset(ends[0]);
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        fromProgram.Reset(ends[0]);
        output.Reset(ends[1]);
        terminal.emplace(loop, input.Get(), output.Get());
    }

    void Listen() {
        terminal->Listen([this](std::string line) { lines.push_back(std::move(line)); }, [this] { ++ended; });
    }
    void Type(std::string_view text) { EXPECT_TRUE(WriteAll(toProgram.Get(), text)); }

    FileDescriptor toProgram, input, fromProgram, output;
    std::optional<ConsoleTerminal> terminal;
    std::vector<std::string> lines;
    int ended = 0;
};

TEST_F(ConsoleTerminalTest, HandsLinesOverAndTellsOfTheEnd) {
    Listen();
    Type("one\r\ntw");
    Type("o\n\n");
    Type(std::string(3000, 'x') + "\nlast");
    toProgram.Reset();
    EXPECT_TRUE(ServeUntil([&] { return ended > 0; }));
    ServePosted();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(lines,
              (std::vector<std::string>{"one", "two", "", std::string(Terminal::longestLine, 'x'), "last"}));
}

TEST_F(ConsoleTerminalTest, CutsALongLineAtACharacter) {
    Listen();
    Type(std::string(1023, 'x') + "\xC3\xA4\n");
    EXPECT_TRUE(ServeUntil([&] { return !lines.empty(); }));
    EXPECT_EQ(lines[0], std::string(1023, 'x'));
}

TEST_F(ConsoleTerminalTest, LosesNothingOfALargeInput) {
    Listen();
    const auto typist = runtime.CreateThread({"typist"}, [&] {
        for (int i = 0; i < 20'000; ++i)
            Type("line " + std::to_string(i) + "\n");
        toProgram.Reset();
    });
    EXPECT_EQ(typist->Wait(100), WaitResult::Timeout) << "nobody serves the loop, so the typist waits";
    EXPECT_TRUE(ServeUntil([&] { return ended > 0; }));
    ASSERT_EQ(lines.size(), 20'000u);
    EXPECT_EQ(lines[19'999], "line 19999");
    EXPECT_EQ(typist->Wait(20'000), WaitResult::Object0);
}

TEST_F(ConsoleTerminalTest, EndsWhileItReadsOrWaits) {
    const auto descriptors = test::OpenDescriptors();
    Listen();
    Type("posted\n");
    runtime.Sleep(10);
    terminal.reset();
    ServePosted();
    EXPECT_TRUE(lines.empty()) << "nothing arrives after the end";
    terminal.emplace(loop, input.Get(), output.Get());
    Listen();
    for (int i = 0; i < 1000; ++i)
        Type("more than may wait\n");
    runtime.Sleep(10);
    terminal.reset();
    terminal.emplace(loop, input.Get(), output.Get());
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

TEST_F(ConsoleTerminalTest, PrintsLinesWholeAndHarmless) {
    struct Case {
        std::string line;
        std::string printed;
    };
    const Case cases[] = {
        {"plain \xC3\xA4\xE8\x99\xAB", "plain \xC3\xA4\xE8\x99\xAB"},
        {"two\nlines\r", "two.lines."},
        {"\x1B[2Jclear", ".[2Jclear"},
        {std::string("a\0b\x7F\tc", 6), "a.b.\tc"},
        {"C1: \xC2\x9B"
         "2J",
         "C1: ..2J"},
        {"\xC2", "\xC2"},
        {"", ""},
    };
    std::string expected;
    for (const Case& entry : cases) {
        terminal->PrintLine(entry.line);
        expected += entry.printed + "\n";
    }
    char bytes[4096];
    EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(read(fromProgram.Get(), bytes, sizeof bytes))),
              expected);

    std::vector<std::shared_ptr<Thread>> printers;
    for (const char c : {'a', 'b', 'c', 'd'})
        printers.push_back(runtime.CreateThread({"printer"}, [&, c] {
            for (int i = 0; i < 50; ++i)
                terminal->PrintLine(std::string(200, c));
        }));
    std::string all;
    while (all.size() < std::size_t{4} * 50 * 201)
        all.append(bytes, static_cast<std::size_t>(read(fromProgram.Get(), bytes, sizeof bytes)));
    for (std::size_t at = 0; at < all.size(); at += 201)
        ASSERT_EQ(all.substr(at, 201), std::string(200, all[at]) + "\n");
    for (const auto& printer : printers)
        printer->Wait(infiniteTicks);
}

TEST_F(ConsoleTerminalTest, AReaderThatSleepsHoldsNobodyUpForLong) {
    const Ticks start = runtime.GetTickCount();
    for (int i = 0; i < 2000; ++i)
        terminal->PrintLine(std::string(100, 'x'));  // a pipe holds 64 KiB
    EXPECT_LT(TicksSince(runtime.GetTickCount(), start), 5000u);
    char bytes[65536];
    EXPECT_GT(read(fromProgram.Get(), bytes, sizeof bytes), 0);
    terminal->PrintLine("it flows again");
    const auto count = static_cast<std::size_t>(read(fromProgram.Get(), bytes, sizeof bytes));
    EXPECT_TRUE(std::string(bytes, count).ends_with("it flows again\n"));
}

}  // namespace
}  // namespace varkel
