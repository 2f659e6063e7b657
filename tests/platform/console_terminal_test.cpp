#include "platform/linux/console_terminal.h"

#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <thread>
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
    // What can be read at once; waits until there is something.
    std::string Printed() {
        char bytes[65536];
        const ssize_t count = read(fromProgram.Get(), bytes, sizeof bytes);
        return {bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

    FileDescriptor toProgram, input, fromProgram, output;
    std::optional<ConsoleTerminal> terminal;
    std::vector<std::string> lines;
    int ended = 0;
};

TEST_F(ConsoleTerminalTest, HandsLinesOverAndTellsOfTheEnd) {
    Listen();
    Type("one\r\ntw");
    Type("o\n\n");
    Type(std::string(3000, 'x') + "\n" + std::string(Terminal::longestLine - 1, 'x') + "\xC3\xA4\nlast");
    toProgram.Reset();
    EXPECT_TRUE(ServeUntil([&] { return ended > 0; }));
    ServePosted();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", "", std::string(Terminal::longestLine, 'x'),
                                               std::string(Terminal::longestLine - 1, 'x'), "last"}));
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
    const std::pair<std::string, std::string> samples[] = {
        {"plain \xC3\xA4\xE8\x99\xAB", "plain \xC3\xA4\xE8\x99\xAB"},
        {"two\nlines\r", "two.lines."},
        {"\x1B[2Jclear", ".[2Jclear"},
        {std::string("a\0b\x7F\tc", 6), "a.b.\tc"},
        {"C1: \xC2\x9B[", "C1: ..["},
        {"\xC2", "\xC2"},
        {"", ""},
    };
    std::string expected;
    for (const auto& [line, printed] : samples) {
        terminal->PrintLine(line);
        expected += printed + "\n";
    }
    EXPECT_EQ(Printed(), expected);

    std::vector<std::jthread> printers;
    for (const char c : {'a', 'b', 'c', 'd'})
        printers.emplace_back([&, c] {
            for (int i = 0; i < 50; ++i)
                terminal->PrintLine(std::string(200, c));
        });
    std::string all;
    while (all.size() < std::size_t{4} * 50 * 201)
        all += Printed();
    for (std::size_t at = 0; at < all.size(); at += 201)
        ASSERT_EQ(all.substr(at, 201), std::string(200, all[at]) + "\n");
}

TEST_F(ConsoleTerminalTest, AReaderThatSleepsHoldsNobodyUpForLong) {
    const Ticks start = runtime.GetTickCount();
    for (int i = 0; i < 2000; ++i)
        terminal->PrintLine(std::string(100, 'x'));  // a pipe holds 64 KiB
    EXPECT_LT(TicksSince(runtime.GetTickCount(), start), 5000u);
    EXPECT_NE(Printed(), "");
    terminal->PrintLine("it flows again");
    EXPECT_TRUE(Printed().ends_with("it flows again\n"));
}

}  // namespace
}  // namespace varkel
