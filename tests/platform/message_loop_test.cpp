#include "platform/message_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;

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

}  // namespace
}  // namespace varkel::test
