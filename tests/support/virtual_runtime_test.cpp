#include "tests/support/virtual_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "platform/log.h"
#include "platform/message_loop.h"
#include "tests/support/memory_files.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

#ifndef __SANITIZE_THREAD__  // which rightly calls this a race
// Two threads that increment through a copy: some orders lose increments.
int RaceOnce(std::uint64_t seed) {
    VirtualRuntime runtime(seed);
    int value = 0;
    const auto increment = [&] {
        for (int i = 0; i < 5; ++i) {
            const int copy = value;
            runtime.Sleep(0);
            value = copy + 1;
        }
    };
    const auto other = runtime.CreateThread({.name = "other"}, increment);
    increment();
    other->Wait(infiniteTicks);
    return value;
}

TEST(VirtualTime, FindsTheOrdersThatLoseSomething) {
    std::set<int> values;
    for (std::uint64_t seed = 1; seed <= 100; ++seed)
        values.insert(RaceOnce(seed));
    EXPECT_LT(*values.begin(), 8);
    EXPECT_GT(values.size(), 1u);
}
#endif

TEST(MessageLoopTest, ServesWorkInOrderAndTimersInTime) {
    VirtualRuntime runtime(1);
    MessageLoop loop(runtime);
    std::vector<std::string> seen;
    loop.Post([&] { seen.push_back("first"); });
    loop.Post([&] {
        seen.push_back("modal");
        bool done = false;
        loop.SetTimer(2, 30, [&] { done = true; });
        loop.Run([&] { return done; });
        loop.KillTimer(2);
        seen.push_back("modal over");
    });
    loop.Post([&] { seen.push_back("inside"); });
    bool over = false;
    loop.SetTimer(1, 100, [&] { over = true; });
    loop.Run([&] { return over; });
    EXPECT_THAT(seen, ElementsAre("first", "modal", "inside", "modal over"));
}

TEST(MessageLoopTest, NeitherDriftsNorCatchesUp) {
    VirtualRuntime runtime(1);
    MessageLoop loop(runtime);
    std::vector<std::uint64_t> rounds;
    const std::uint64_t start = runtime.Elapsed();
    loop.SetTimer(1, 10'000, [&] {
        rounds.push_back(runtime.Elapsed() - start);
        runtime.Sleep(rounds.size() == 3 ? 25'000 : 30);
    });
    loop.Run([&] { return rounds.size() == 1000; });
    EXPECT_EQ(rounds[2], 30'000u);
    EXPECT_EQ(rounds[3], 55'000u) << "at once, once";
    EXPECT_EQ(rounds[4], 60'000u) << "and back in step";
    EXPECT_EQ(rounds.back() % 10'000, 0u);
}

TEST(MessageLoopTest, RefusesWhatItsQueueDoesNotHold) {
    VirtualRuntime runtime(1);
    MessageLoop loop(runtime);
    for (std::size_t i = 0; i < MessageLoop::queueLimit; ++i)
        ASSERT_TRUE(loop.Post([] {}));
    EXPECT_FALSE(loop.Post([] {}));
    bool killed = false;
    loop.SetTimer(1, 1, [&] { killed = true; });
    loop.KillTimer(1);
    loop.Post([] {});
    loop.Quit();
    loop.Run([] { return false; });
    EXPECT_FALSE(killed);
}

TEST(LogTest, WritesLinesAsRequired) {
    VirtualRuntime runtime(1);
    MemoryFiles files;
    Log log(runtime, files);
    log.Trace("before it is open");
    ASSERT_TRUE(log.Open("Nandflash\\3G", 1 << 20, LogLevel::Debug));
    log.Trace("[BTNEV]enter On%s", "Cpin");
    log.Write(LogLevel::Warning, "%s", std::string(600, 'x').c_str());
    log.Trace("%s", ("x" + std::string(510, 'y') + "虫").c_str());
    log.MaskDigits(true);
    log.Trace("%s", LogText(log, std::string_view("1\0a2", 4)).CStr());
    EXPECT_EQ(files.Content("nandflash\\3g.ini"), "18:05:00 T [BTNEV]enter OnCpin\n18:05:00 W " +
                                                      std::string(512, 'x') + "\n18:05:00 T x" +
                                                      std::string(510, 'y') + "\n18:05:00 T *.a*\n");
    ASSERT_TRUE(log.Open("Nandflash\\3G", 1 << 20, LogLevel::Info));
    log.Trace("not wanted");
    EXPECT_EQ(files.Content("nandflash\\3g.ini"), "") << "begun anew, and silent at this level";
}

TEST(LogTest, SetsAFullFileAsideAndKeepsTheNewestLines) {
    VirtualRuntime runtime(1);
    MemoryFiles files;
    Log log(runtime, files);
    ASSERT_TRUE(log.Open("3G", 1000, LogLevel::Debug));
    for (int i = 0; i < 200; ++i) {
        log.Trace("line %d", i);
        ASSERT_LE(files.Content("3G.ini").size(), 1000u);
    }
    EXPECT_THAT(files.Content("3G.ini"), HasSubstr("line 199\n"));
    EXPECT_GT(files.Content("3G.old.ini").size(), 900u);
}

}  // namespace
}  // namespace varkel::test
