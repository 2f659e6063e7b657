#include "platform/linux/bus.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <vector>

#include "tests/platform/private_bus.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class BusTest : public testing::Test {
  protected:
    ProblemSink CountProblems() {
        return [this](std::string_view) { ++problems; };
    }

    // Adds the object /test with the methods Double (i -> i), Later (deferred, kept in `requests`) and Never.
    void Serve(Bus& bus) {
        static const sd_bus_vtable methods[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("Double", "i", "i", OnDouble, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_METHOD("Later", "", "i", OnLater, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END,
        };
        serving = &bus;
        ASSERT_TRUE(bus.Run([&](sd_bus* connection) {
            sd_bus_add_object_vtable(connection, nullptr, "/test", "org.varkel.Test1", methods, this);
        }));
        EXPECT_TRUE(bus.RequestName("org.varkel.Test"));
    }

    static int OnDouble(sd_bus_message* call, void*, sd_bus_error*) {
        int value = 0;
        const int result = sd_bus_message_read(call, "i", &value);
        return result < 0 ? result : sd_bus_reply_method_return(call, "i", value * 2);
    }

    static int OnLater(sd_bus_message* call, void* userdata, sd_bus_error* error) {
        auto& test = *static_cast<BusTest*>(userdata);
        auto request = test.serving->Defer(call);
        if (!request) return sd_bus_error_set(error, busErrorBusy, "busy");
        std::lock_guard lock(test.mutex);
        test.requests.push_back(std::move(request));
        return 1;
    }

    std::size_t Requests() {
        std::lock_guard lock(mutex);
        return requests.size();
    }

    static BusMethod Method(const char* member) {
        return {"org.varkel.Test", "/test", "org.varkel.Test1", member};
    }

    static bool Double(Bus& bus, int& value) {
        return bus.Call(
            Method("Double"), [&](sd_bus_message* m) { return sd_bus_message_append(m, "i", value); },
            [&](sd_bus_message* m) { return sd_bus_message_read(m, "i", &value); });
    }

    static bool Later(Bus& bus, int& value, std::chrono::milliseconds timeout) {
        return bus.Call(
            Method("Later"), [](sd_bus_message*) { return 0; },
            [&](sd_bus_message* m) { return sd_bus_message_read(m, "i", &value); }, timeout);
    }

    static void ExpectSleep(Bus& bus) {
        test::ThreadCost costs[2];
        for (test::ThreadCost& cost : costs) {
            EXPECT_TRUE(bus.Run([&](sd_bus*) { cost = test::CostOfThisThread(); }));
            std::this_thread::sleep_for(200ms);
        }
        EXPECT_LT(costs[1].wakeUps - costs[0].wakeUps, 5);
        EXPECT_LT(costs[1].cpuMilliseconds - costs[0].cpuMilliseconds, 50);
    }

    test::PrivateBus daemon;
    std::atomic<int> problems = 0;
    Bus* serving = nullptr;
    std::mutex mutex;
    std::vector<std::shared_ptr<BusRequest>> requests;
};

TEST_F(BusTest, CallsFromManyThreadsAtOnce) {
    Bus server(daemon.Options(), CountProblems());
    Bus client(daemon.Options(), CountProblems());
    ASSERT_TRUE(server.Available() && client.Available());
    EXPECT_NE(server.UniqueName(), client.UniqueName());
    Serve(server);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> callers;
    callers.reserve(8);
    for (int t = 0; t < 8; ++t)
        callers.emplace_back([&, t] {
            for (int i = 0; i < 100; ++i) {
                int value = t * 1000 + i;
                if (!Double(i % 2 ? client : server, value) || value != 2 * (t * 1000 + i)) ++wrong;
            }
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(problems, 0);
}

TEST_F(BusTest, ErrorsAndSilenceAreFailedCallsInTime) {
    Bus server(daemon.Options(), CountProblems());
    Bus client(daemon.Options(), CountProblems());
    Serve(server);
    int value = 1;
    const auto call = [&](const BusMethod& method, const char* append) {
        return client.Call(
            method,
            [&](sd_bus_message* m) { return *append == '\0' ? 0 : sd_bus_message_append(m, append, value); },
            [&](sd_bus_message* m) { return sd_bus_message_read(m, "i", &value); });
    };
    const auto start = Clock::now();
    EXPECT_FALSE(call({"org.varkel.Nobody", "/test", "org.varkel.Test1", "Double"}, "i"));
    EXPECT_FALSE(call({"not a bus name", "no path", "x", ""}, "i"));
    EXPECT_FALSE(call(Method("Missing"), "i"));
    EXPECT_FALSE(call(Method("Double"), "")) << "no argument";
    EXPECT_FALSE(call(Method("Double"), "u")) << "wrong argument";
    EXPECT_LT(Clock::now() - start, 900ms) << "errors come at once";

    int reads = 0;
    const auto countReads = [&](sd_bus_message*) { return ++reads; };
    EXPECT_FALSE(client.Call(
        Method("Later"), [](sd_bus_message*) { return 0; }, countReads, 50ms));
    EXPECT_LT(Clock::now() - start, 1900ms);
    ASSERT_EQ(Requests(), 1u);
    requests[0]->Return([](sd_bus_message* m) { return sd_bus_message_append(m, "i", 7); });
    value = 21;
    EXPECT_TRUE(Double(client, value));
    EXPECT_EQ(value, 42);
    EXPECT_EQ(reads, 0) << "a late answer disturbs nobody";
}

TEST_F(BusTest, DeferredCallsAreAnsweredOnceFromAnyThread) {
    Bus server(daemon.Options(), CountProblems());
    Bus client(daemon.Options(), CountProblems());
    Serve(server);
    int value = 0;
    bool good = false;
    const auto callLater = [&](const std::function<void()>& answer) {
        const std::size_t before = Requests();
        std::thread caller([&] { good = Later(client, value, 1000ms); });
        while (Requests() == before)
            std::this_thread::yield();
        answer();
        caller.join();
        return good;
    };
    EXPECT_TRUE(callLater([&] {
        requests[0]->Return([](sd_bus_message* m) { return sd_bus_message_append(m, "i", 5); });
        requests[0]->Fail(busErrorFailed, "too late");
    }));
    EXPECT_EQ(value, 5);
    EXPECT_FALSE(callLater([&] { requests[1]->Fail(busErrorFailed, "no"); }));
    const auto start = Clock::now();
    EXPECT_FALSE(callLater([&] { requests[2].reset(); })) << "dropped is answered too";
    EXPECT_LT(Clock::now() - start, 900ms);
}

TEST_F(BusTest, BoundsWhatWaits) {
    Bus server(daemon.Options(), CountProblems());
    Bus client(daemon.Options(), CountProblems());
    Serve(server);
    Bus secondClient(daemon.Options(), CountProblems());
    // Callers that give up leave their requests with the server.
    std::vector<std::thread> callers;
    std::atomic<int> failed = 0;
    for (std::size_t i = 0; i < 2 * Bus::mostCalls; ++i)
        callers.emplace_back([&, i] {
            int value = 0;
            failed += Later(i % 3 == 0 ? secondClient : client, value, 300ms) ? 0 : 1;
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(failed, static_cast<int>(2 * Bus::mostCalls));
    EXPECT_EQ(Requests(), Bus::mostRequests);
    int value = 1;
    EXPECT_TRUE(Double(client, value)) << "all that is over";
}

TEST_F(BusTest, BoundsWhatWaitsForABusThreadThatIsHeldUp) {
    Bus bus(daemon.Options(), CountProblems());
    std::atomic<bool> held = false;
    std::atomic<bool> go = false;
    EXPECT_TRUE(bus.Post([&](sd_bus*) {
        for (held = true; !go;)
            std::this_thread::yield();
    }));
    while (!held)
        std::this_thread::yield();
    std::atomic<int> refusedAtOnce = 0;
    std::atomic<int> used = 0;
    std::vector<std::thread> callers;
    for (std::size_t i = 0; i < Bus::mostCalls + 5; ++i)
        callers.emplace_back([&] {
            const auto start = Clock::now();
            EXPECT_FALSE(bus.Call(
                Method("Double"), [&](sd_bus_message*) { return ++used; },
                [&](sd_bus_message*) { return ++used; }));
            refusedAtOnce += Clock::now() - start < 500ms ? 1 : 0;
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(refusedAtOnce, 5);

    std::atomic<std::size_t> ran = 0;
    std::size_t posted = 0;
    while (posted <= Bus::mostPosted && bus.Post([&](sd_bus*) { ++ran; }))
        ++posted;
    EXPECT_EQ(posted, Bus::mostPosted - Bus::mostCalls) << "the calls stand in the same queue";
    go = true;
    EXPECT_TRUE(bus.Run([](sd_bus*) {}));
    EXPECT_EQ(ran, posted);
    EXPECT_EQ(used, 0) << "callers that have given up are left alone";
}

TEST_F(BusTest, WithoutABusEverythingFailsAtOnceAndIsSaidOnce) {
    const auto descriptors = test::OpenDescriptors();
    const BusOptions options[] = {
        {BusKind::Address, "unix:path=/nowhere/bus"}, {BusKind::Address, "nonsense"}, {BusKind::None, ""}};
    for (const BusOptions& option : options) {
        problems = 0;
        const auto start = Clock::now();
        Bus bus(option, CountProblems());
        EXPECT_FALSE(bus.Available());
        EXPECT_EQ(bus.UniqueName(), "");
        EXPECT_EQ(problems, option.kind == BusKind::None ? 0 : 1);
        int value = 1;
        EXPECT_FALSE(Double(bus, value));
        EXPECT_FALSE(bus.Post([](sd_bus*) {}));
        EXPECT_FALSE(bus.Run([](sd_bus*) {}));
        EXPECT_FALSE(bus.RequestName("org.varkel.X"));
        EXPECT_EQ(problems, option.kind == BusKind::None ? 0 : 1);
        EXPECT_LT(Clock::now() - start, 500ms);
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

TEST_F(BusTest, ABusThatNeverAnswersIsGivenUp) {
    test::ScratchDirectory scratch;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (scratch / "mute").copy(address.sun_path, sizeof address.sun_path - 1);
    const FileDescriptor mute(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(mute.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(mute.Get(), 1), 0);
    const auto start = Clock::now();
    const Bus bus({BusKind::Address, "unix:path=" + (scratch / "mute")}, CountProblems());
    EXPECT_FALSE(bus.Available());
    EXPECT_EQ(problems, 1);
    EXPECT_LT(Clock::now() - start, 1500ms);
}

TEST_F(BusTest, ALostBusIsSaidOnceAndCostsNothing) {
    Bus server(daemon.Options(), CountProblems());
    Bus client(daemon.Options(), CountProblems());
    Serve(server);
    int value = 0;
    std::thread caller([&] { EXPECT_FALSE(Later(client, value, 1000ms)); });
    while (Requests() == 0)
        std::this_thread::yield();
    daemon.Stop();
    caller.join();
    while (server.Available() || client.Available())
        std::this_thread::yield();
    EXPECT_FALSE(Double(client, value));
    requests[0]->Return([](sd_bus_message* m) { return sd_bus_message_append(m, "i", 7); });
    ExpectSleep(server);
    EXPECT_EQ(problems, 2);
}

TEST_F(BusTest, SleepsWhileNothingHappensAndLeavesNothingBehind) {
    const auto descriptors = test::OpenDescriptors();
    const int inheritable = test::InheritableDescriptors();
    {
        Bus bus(daemon.Options(), CountProblems());
        Serve(bus);
        EXPECT_EQ(test::InheritableDescriptors(), inheritable);
        ExpectSleep(bus);
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_EQ(problems, 0);
}

}  // namespace
}  // namespace varkel
