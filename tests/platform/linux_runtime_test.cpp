#include "platform/linux/linux_runtime.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace varkel {
namespace {

constexpr Ticks longEnough = 20'000;
constexpr Ticks shortWait = 20;

ThreadMessage Message(std::uint32_t id, std::string_view text = {}) {
    ThreadMessage message{id, text.size(), std::make_unique<char[]>(text.size() + 1)};
    text.copy(message.lParam.get(), text.size());
    return message;
}

TEST(LinuxRuntimeTest, ManualEventsLetEverybodyPassUntilReset) {
    LinuxRuntime runtime;
    const auto event = runtime.CreateEvent(EventReset::Manual);
    EXPECT_EQ(event->Wait(0), WaitResult::Timeout);
    std::atomic<int> passed = 0;
    std::vector<std::shared_ptr<Thread>> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.push_back(runtime.CreateThread({"waiter"}, [&] {
            if (event->Wait(infiniteTicks) == WaitResult::Object0) ++passed;
        }));
    event->Set();
    for (const auto& waiter : waiters)
        EXPECT_EQ(waiter->Wait(longEnough), WaitResult::Object0);
    EXPECT_EQ(passed, 4);
    EXPECT_EQ(event->Wait(0), WaitResult::Object0) << "still signalled";
    event->Reset();
    EXPECT_EQ(event->Wait(shortWait), WaitResult::Timeout);
}

TEST(LinuxRuntimeTest, AutomaticEventsLetOnePassForEachSet) {
    LinuxRuntime runtime;
    const auto event = runtime.CreateEvent(EventReset::Automatic);
    event->Set();
    event->Set();
    EXPECT_EQ(event->Wait(0), WaitResult::Object0);
    EXPECT_EQ(event->Wait(0), WaitResult::Timeout) << "two sets before a wait are one";

    const auto answer = runtime.CreateEvent(EventReset::Automatic);
    const auto echo = runtime.CreateThread({"echo"}, [&] {
        for (int i = 0; i < 1000; ++i) {
            event->Wait(infiniteTicks);
            answer->Set();
        }
    });
    for (int i = 0; i < 1000; ++i) {
        event->Set();
        ASSERT_EQ(answer->Wait(longEnough), WaitResult::Object0) << i;
    }
    EXPECT_EQ(echo->Wait(longEnough), WaitResult::Object0);
}

TEST(LinuxRuntimeTest, AResumeBeforeTheSuspendIsRemembered) {
    LinuxRuntime runtime;
    const auto go = runtime.CreateEvent(EventReset::Manual);
    std::atomic<int> rounds = 0;
    const auto thread = runtime.CreateThread({"rounds", true}, [&] {
        ++rounds;
        go->Wait(infiniteTicks);
        runtime.SuspendThread();
        ++rounds;
        runtime.SuspendThread();
        ++rounds;
    });
    EXPECT_EQ(thread->Wait(shortWait), WaitResult::Timeout);
    EXPECT_EQ(rounds, 0) << "created suspended";
    thread->ResumeThread();
    // Two resumes of a running thread are one: the first suspension passes, the second one holds.
    while (rounds < 1)
        runtime.Sleep(1);
    thread->ResumeThread();
    thread->ResumeThread();
    go->Set();
    EXPECT_EQ(thread->Wait(shortWait), WaitResult::Timeout);
    EXPECT_EQ(rounds, 2);
    thread->ResumeThread();
    EXPECT_EQ(thread->Wait(longEnough), WaitResult::Object0);
    EXPECT_EQ(rounds, 3);
}

TEST(LinuxRuntimeTest, MessagesArriveInOrderAndTheQueueIsBounded) {
    LinuxRuntime runtime;
    const auto go = runtime.CreateEvent(EventReset::Manual);
    std::string received;
    const auto reader = runtime.CreateThread({"reader"}, [&] {
        go->Wait(infiniteTicks);
        for (;;) {
            const ThreadMessage message = runtime.GetMessage();
            if (message.message == 0) return;
            received.append(message.lParam.get(), message.wParam);
        }
    });
    ThreadMessage kept = Message(1, "kept");
    for (std::size_t i = 0; i < Runtime::threadQueueLimit; ++i) {
        ThreadMessage message = Message(1, std::string(1, static_cast<char>('a' + i % 26)));
        ASSERT_TRUE(runtime.PostThreadMessage(reader->Id(), message));
        EXPECT_EQ(message.lParam, nullptr) << "the buffer went along";
    }
    EXPECT_FALSE(runtime.PostThreadMessage(reader->Id(), kept));
    EXPECT_STREQ(kept.lParam.get(), "kept") << "a refused buffer stays with the caller";
    go->Set();
    ThreadMessage end = Message(0);
    while (!runtime.PostThreadMessage(reader->Id(), end))
        runtime.Sleep(1);
    EXPECT_EQ(reader->Wait(longEnough), WaitResult::Object0);
    ASSERT_EQ(received.size(), Runtime::threadQueueLimit);
    EXPECT_EQ(received.substr(0, 5), "abcde");
    EXPECT_FALSE(runtime.PostThreadMessage(reader->Id(), kept)) << "nobody reads any more";
    EXPECT_FALSE(runtime.PostThreadMessage(ThreadId{12345}, kept));
    EXPECT_FALSE(runtime.PostThreadMessage(runtime.CurrentThreadId(), kept)) << "not a thread of the runtime";
}

TEST(LinuxRuntimeTest, AnEndedThreadHasLetGoOfEverythingItHeld) {
    LinuxRuntime runtime;
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    const auto thread =
        runtime.CreateThread({"holder", false, ThreadPriority::Lowest}, [held = std::move(held)] {});
    EXPECT_EQ(thread->Wait(longEnough), WaitResult::Object0);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(thread->Wait(0), WaitResult::Object0) << "again";
    EXPECT_EQ(runtime.RunningThreads(), 0u);
}

}  // namespace
}  // namespace varkel
