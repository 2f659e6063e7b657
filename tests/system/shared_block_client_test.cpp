// A program of the unit as a client of the shared block, in a process of its own.
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "modem/shared_block.h"
#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/shm_named_objects.h"
#include "tests/support/scratch.h"

namespace varkel::test {
namespace {

// What a client is built from: the three names, the layout, and the system's shared memory.
struct Client {
    explicit Client(const std::string& prefix) : objects(runtime, prefix) {}

    // The first two words of the block, read under the mutex; zeros when it cannot be had.
    std::pair<std::uint32_t, std::uint32_t> Read() {
        std::uint32_t words[2] = {};
        if (mutex && mapping && mutex->Wait(5000) == WaitResult::Object0) {
            std::memcpy(words, mapping->MapViewOfFile().data(), sizeof words);
            mutex->ReleaseMutex();
        }
        return {words[0], words[1]};
    }

    LinuxRuntime runtime;
    ShmNamedObjects objects;
    std::unique_ptr<NamedMutex> mutex = objects.CreateMutex("SAFE_MEM_DATA_FILE MUTEX");
    std::unique_ptr<NamedMapping> mapping = objects.CreateFileMapping("SAFE_MEM_DATA_FILE", 1032);
    std::shared_ptr<Event> response = objects.CreateEvent("CGSMData RESP EVENT");
};

struct SharedBlockClientTest : testing::Test {
    ~SharedBlockClientTest() override { ShmNamedObjects::Remove(prefix); }

    // Runs the client in a child; its exit code, or 128 and the signal that ended it.
    template <class Body>
    pid_t Start(Body body) {
        const pid_t child = fork();
        if (child == 0) _exit(body());
        return child;
    }
    static int End(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    ScratchDirectory scratch;
    const std::string prefix = "varkel-client-" + std::to_string(getpid());
    LinuxRuntime runtime;
    LinuxUnitFiles files{scratch / "flash", scratch / "assets"};
    Log log{runtime, files};
    ShmNamedObjects objects{runtime, prefix};
};

TEST_F(SharedBlockClientTest, ReadsTheBlockAndHearsTheAnswer) {
    CGSMData data(objects, log);
    ASSERT_TRUE(data.SetWindowHandle(0x2A03));
    const pid_t child = Start([this] {
        Client client(prefix);
        if (client.response->Wait(5000) != WaitResult::Object0) return 1;
        return client.Read() == std::pair<std::uint32_t, std::uint32_t>(0x2A03, 1) ? 0 : 2;
    });
    ASSERT_TRUE(data.SetConnectionStatus(ConnectionStatus::Up));
    data.SignalResponse();
    EXPECT_EQ(End(child), 0);
}

TEST_F(SharedBlockClientTest, LocksNobodyOutByDyingWithTheMutex) {
    CGSMData data(objects, log);
    for (int round = 1; round <= 3; ++round) {
        const pid_t child = Start([this] {
            Client client(prefix);
            if (client.mutex->Wait(5000) != WaitResult::Object0) return 1;
            return raise(SIGKILL);
        });
        EXPECT_EQ(End(child), 128 + SIGKILL);
        EXPECT_TRUE(data.SetConnectionStatus(ConnectionStatus::NotUp)) << "round " << round;
        EXPECT_EQ(Client(prefix).Read().second, 2u);
    }
}

}  // namespace
}  // namespace varkel::test
