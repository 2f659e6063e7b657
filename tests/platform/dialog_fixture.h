// A test whose own thread is the dialog thread.
#pragma once

#include <functional>
#include <future>
#include <gtest/gtest.h>

#include "platform/linux/linux_runtime.h"
#include "platform/message_loop.h"

namespace varkel::test {

class DialogFixture : public testing::Test {
  protected:
    // Serves the loop until `done`; false when that takes more than 20 s.
    bool ServeUntil(const std::function<bool()>& done) {
        const Ticks start = runtime.GetTickCount();
        const auto late = [&] { return TicksSince(runtime.GetTickCount(), start) > 20'000; };
        loop.SetTimer(watchTimer, 5, [] {});
        loop.Run([&] { return done() || late(); });
        loop.KillTimer(watchTimer);
        return done();
    }

    // Serves what has been posted by now.
    void ServePosted() {
        bool served = false;
        loop.Post([&] { served = true; });
        ServeUntil([&] { return served; });
    }

    // What a call on another thread comes back with, while this one serves the loop.
    template <class Call>
    auto Elsewhere(Call call) {
        auto result = std::async(std::launch::async, std::move(call));
        EXPECT_TRUE(ServeUntil(
            [&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return result.get();
    }

    LinuxRuntime runtime;
    MessageLoop loop{runtime};

  private:
    static constexpr TimerId watchTimer = 9999;
};

}  // namespace varkel::test
