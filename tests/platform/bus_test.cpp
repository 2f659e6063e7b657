#include "platform/linux/bus.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <vector>

#include "platform/guarded.h"
#include "tests/platform/private_bus.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

int Nothing(sd_bus_message*) {
    return 0;
}

Bus::Append Number(int value) {
    return [value](sd_bus_message* m) { return sd_bus_message_append(m, "i", value); };
}

Bus::Read Into(int& value) {
    return [&value](sd_bus_message* m) { return sd_bus_message_read(m, "i", &value); };
}

class BusTest : public testing::Test {
  protected:
    // The server has the object /test with the methods Double (i -> i) and Later (deferred, in `requests`).
    BusTest() {
        static const sd_bus_vtable methods[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("Double", "i", "i", OnDouble, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_METHOD("Later", "", "i", OnLater, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END,
        };
        EXPECT_TRUE(server.Available() && client.Available());
        server.Run([this](sd_bus* connection) {
            sd_bus_add_object_vtable(connection, nullptr, "/test", "org.varkel.Test1", methods, this);
        });
        EXPECT_TRUE(server.RequestName("org.varkel.Test"));
    }

    ProblemSink CountProblems() {
        return [this](std::string_view) { ++problems; };
    }

    static int OnDouble(sd_bus_message* call, void*, sd_bus_error*) {
        int value = 0;
        const int result = Into(value)(call);
        return result < 0 ? result : sd_bus_reply_method_return(call, "i", value * 2);
    }

    static int OnLater(sd_bus_message* call, void* userdata, sd_bus_error* error) {
        auto& test = *static_cast<BusTest*>(userdata);
        auto request = test.server.Defer(call);
        if (!request) return sd_bus_error_set(error, busErrorBusy, "busy");
        test.requests.With([&](auto& all) { all.push_back(std::move(request)); });
        return 1;
    }

    std::shared_ptr<BusRequest> Request(std::size_t index) {
        while (requests.Get().size() <= index)
            std::this_thread::yield();
        return requests.Get()[index];
    }

    static BusMethod Method(const char* member) {
        return {"org.varkel.Test", "/test", "org.varkel.Test1", member};
    }

    static bool Double(Bus& bus, int& value) {
        return bus.Call(Method("Double"), Number(value), Into(value));
    }

    static bool Later(Bus& bus, int& value, std::chrono::milliseconds timeout) {
        return bus.Call(Method("Later"), Nothing, Into(value), timeout);
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
    Guarded<std::vector<std::shared_ptr<BusRequest>>> requests;
    Bus server{daemon.Options(), CountProblems()};
    Bus client{daemon.Options(), CountProblems()};
};

TEST_F(BusTest, CallsFromManyThreadsAtOnce) {
    EXPECT_NE(server.UniqueName(), client.UniqueName());
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> callers;
    for (int t = 0; t < 8; ++t)
        callers.emplace_back([&, t] {
            for (int i = 0; i < 100; ++i) {
                int value = t * 1000 + i;
                if (!Double(i % 2 ? client : server, value) || value != 2 * (t * 1000 + i)) ++wrong;
            }
        });
    callers.clear();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(problems, 0);
}

TEST_F(BusTest, ErrorsAndSilenceAreFailedCallsInTime) {
    int value = 1;
    const auto unsignedNumber = [](sd_bus_message* m) { return sd_bus_message_append(m, "u", 1u); };
    const auto start = Clock::now();
    EXPECT_FALSE(client.Call({"org.varkel.Nobody", "/test", "x.y", "Double"}, Number(1), Into(value)));
    EXPECT_FALSE(client.Call({"not a bus name", "no path", "x", ""}, Number(1), Into(value)));
    EXPECT_FALSE(client.Call(Method("Missing"), Number(1), Into(value)));
    EXPECT_FALSE(client.Call(Method("Double"), Nothing, Into(value))) << "no argument";
    EXPECT_FALSE(client.Call(Method("Double"), unsignedNumber, Into(value))) << "wrong argument";
    EXPECT_LT(Clock::now() - start, 900ms) << "errors come at once";

    int reads = 0;
    const auto countReads = [&](sd_bus_message*) { return ++reads; };
    EXPECT_FALSE(client.Call(Method("Later"), Nothing, countReads, 50ms));
    EXPECT_LT(Clock::now() - start, 1900ms);
    Request(0)->Return(Number(7));
    value = 21;
    EXPECT_TRUE(Double(client, value));
    EXPECT_EQ(value, 42);
    EXPECT_EQ(reads, 0) << "a late answer disturbs nobody";
}

TEST_F(BusTest, DeferredCallsAreAnsweredOnceFromAnyThread) {
    int value = 0;
    bool good = false;
    const auto callLater = [&](std::size_t index, const std::function<void()>& answer) {
        std::thread caller([&] { good = Later(client, value, 1000ms); });
        Request(index);
        answer();
        caller.join();
        return good;
    };
    EXPECT_TRUE(callLater(0, [&] {
        Request(0)->Return(Number(5));
        Request(0)->Fail(busErrorFailed, "too late");
    }));
    EXPECT_EQ(value, 5);
    EXPECT_FALSE(callLater(1, [&] { Request(1)->Fail(busErrorFailed, "no"); }));
    const auto start = Clock::now();
    EXPECT_FALSE(callLater(2, [&] { requests.Set({}); })) << "dropped is answered too";
    EXPECT_LT(Clock::now() - start, 900ms);
}

TEST_F(BusTest, BoundsWhatWaits) {
    Bus secondClient(daemon.Options(), CountProblems());
    // Callers that give up leave their requests with the server.
    std::atomic<std::size_t> failed = 0;
    std::vector<std::jthread> callers;
    for (std::size_t i = 0; i < 2 * Bus::mostCalls; ++i)
        callers.emplace_back([&, i] {
            int value = 0;
            failed += Later(i % 3 == 0 ? secondClient : client, value, 300ms) ? 0 : 1;
        });
    callers.clear();
    EXPECT_EQ(failed, 2 * Bus::mostCalls);
    EXPECT_EQ(requests.Get().size(), Bus::mostRequests);
    int value = 1;
    EXPECT_TRUE(Double(client, value)) << "all that is over";
}

TEST_F(BusTest, BoundsWhatWaitsForABusThreadThatIsHeldUp) {
    std::atomic<bool> held = false;
    std::atomic<bool> go = false;
    EXPECT_TRUE(client.Post([&](sd_bus*) {
        for (held = true; !go;)
            std::this_thread::yield();
    }));
    while (!held)
        std::this_thread::yield();
    std::atomic<int> refusedAtOnce = 0;
    std::atomic<int> used = 0;
    const auto use = [&](sd_bus_message*) { return ++used; };
    std::vector<std::jthread> callers;
    for (std::size_t i = 0; i < Bus::mostCalls + 5; ++i)
        callers.emplace_back([&] {
            const auto start = Clock::now();
            EXPECT_FALSE(client.Call(Method("Double"), use, use));
            refusedAtOnce += Clock::now() - start < 500ms ? 1 : 0;
        });
    callers.clear();
    EXPECT_EQ(refusedAtOnce, 5);

    std::atomic<std::size_t> ran = 0;
    std::size_t posted = 0;
    while (posted <= Bus::mostPosted && client.Post([&](sd_bus*) { ++ran; }))
        ++posted;
    EXPECT_EQ(posted, Bus::mostPosted - Bus::mostCalls) << "the calls stand in the same queue";
    go = true;
    EXPECT_TRUE(client.Run([](sd_bus*) {}));
    EXPECT_EQ(ran, posted);
    EXPECT_EQ(used, 0) << "callers that have given up are left alone";
}

TEST_F(BusTest, WithoutABusEverythingFailsInTimeAndIsSaidOnce) {
    const test::ScratchDirectory scratch;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (scratch / "mute").copy(address.sun_path, sizeof address.sun_path - 1);
    const FileDescriptor mute(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(mute.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(mute.Get(), 1), 0);
    const auto descriptors = test::OpenDescriptors();
    const struct {
        BusOptions options;
        int problems;
        std::chrono::milliseconds limit;
    } cases[] = {{{BusKind::Address, "unix:path=/nowhere/bus"}, 1, 500ms},
                 {{BusKind::Address, "nonsense"}, 1, 500ms},
                 {{BusKind::None, ""}, 0, 500ms},
                 {{BusKind::Address, "unix:path=" + (scratch / "mute")}, 1, 1500ms}};
    for (const auto& none : cases) {
        problems = 0;
        const auto start = Clock::now();
        Bus bus(none.options, CountProblems());
        EXPECT_FALSE(bus.Available());
        EXPECT_EQ(bus.UniqueName(), "");
        EXPECT_EQ(problems, none.problems);
        int value = 1;
        EXPECT_FALSE(Double(bus, value));
        EXPECT_FALSE(bus.Post([](sd_bus*) {}));
        EXPECT_FALSE(bus.Run([](sd_bus*) {}));
        EXPECT_FALSE(bus.RequestName("org.varkel.X"));
        EXPECT_EQ(problems, none.problems);
        EXPECT_LT(Clock::now() - start, none.limit) << none.options.address;
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

TEST_F(BusTest, ALostBusIsSaidOnceAndCostsNothing) {
    int value = 0;
    std::thread caller([&] { EXPECT_FALSE(Later(client, value, 1000ms)); });
    const auto request = Request(0);
    daemon.Stop();
    caller.join();
    while (server.Available() || client.Available())
        std::this_thread::yield();
    EXPECT_FALSE(Double(client, value));
    request->Return(Number(7));
    ExpectSleep(server);
    EXPECT_EQ(problems, 2);
}

TEST_F(BusTest, SleepsWhileNothingHappensAndLeavesNothingBehind) {
    const auto descriptors = test::OpenDescriptors();
    const int inheritable = test::InheritableDescriptors();
    {
        Bus bus(daemon.Options(), CountProblems());
        EXPECT_TRUE(bus.RequestName("org.varkel.Another"));
        EXPECT_EQ(test::InheritableDescriptors(), inheritable);
        ExpectSleep(bus);
        ExpectSleep(server);
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_EQ(problems, 0);
}

}  // namespace
}  // namespace varkel
