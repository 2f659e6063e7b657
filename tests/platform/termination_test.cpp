#include "platform/linux/termination.h"

#include <atomic>
#include <gtest/gtest.h>
#include <signal.h>
#include <thread>
#include <unistd.h>

#include "platform/linux/linux_runtime.h"
#include "tests/platform/another_process.h"

namespace varkel {
namespace {

// Runs `body` in another process, for signals meant for the whole process; its exit status.
template <class Body>
int StatusOf(Body body) {
    return test::StatusOf(test::InAnotherProcess([&] {
        alarm(20);
        body();
    }));
}

TEST(TerminationTest, TheFirstSignalCallsTheFunctionWhicheverThreadRuns) {
    for (const int number : {SIGINT, SIGTERM}) {
        const int status = StatusOf([number] {
            LinuxRuntime runtime;
            const auto called = runtime.CreateEvent(EventReset::Manual);
            const Termination termination([&] { called->Set(); });
            const auto other = runtime.CreateThread({"other"}, [&] { called->Wait(infiniteTicks); });
            kill(getpid(), number);
            EXPECT_EQ(called->Wait(10'000), WaitResult::Object0);
            EXPECT_EQ(other->Wait(10'000), WaitResult::Object0);
        });
        EXPECT_EQ(status, 0) << number;
    }
}

TEST(TerminationTest, TheSecondSignalEndsTheProcessAtOnce) {
    const int status = StatusOf([] {
        std::atomic<bool> called = false;
        const Termination termination([&] { called = true; });
        kill(getpid(), SIGINT);
        while (!called)
            std::this_thread::yield();
        kill(getpid(), SIGTERM);
        for (;;)
            pause();
    });
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 130);
}

TEST(TerminationTest, AfterwardsSignalsEndTheProcessAsEver) {
    const int status = StatusOf([] {
        {
            const Termination termination([] { _exit(3); });
        }
        kill(getpid(), SIGTERM);
    });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST(TerminationTest, AClosedPipeIsAFailedWrite) {
    const int status = StatusOf([] {
        const Termination termination([] {});
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        EXPECT_EQ(write(ends[1], "x", 1), -1);
    });
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace varkel
