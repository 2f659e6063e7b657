#include "platform/linux/shm_named_objects.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <signal.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "tests/platform/another_process.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

using test::InAnotherProcess;
using test::StatusOf;

constexpr Ticks longEnough = 20'000;
constexpr const char* blockName = "SAFE_MEM_DATA_FILE";
constexpr const char* mutexName = "SAFE_MEM_DATA_FILE MUTEX";
constexpr const char* eventName = "CGSMData RESP EVENT";

// True when all that `body` expects in another process comes true.
template <class Body>
bool Elsewhere(Body body) {
    return StatusOf(InAnotherProcess(body)) == 0;
}

void AwaitInSystemCall(pid_t process, long number) {
    const std::string file = "/proc/" + std::to_string(process) + "/syscall";
    while (!test::FileContent(file).starts_with(std::to_string(number) + " "))
        std::this_thread::yield();
}

class ShmNamedObjectsTest : public testing::Test {
  protected:
    void TearDown() override { ShmNamedObjects::Remove(prefix); }

    std::string Path(std::string_view file) const { return "/dev/shm/" + prefix + "." + std::string(file); }
    std::size_t Files() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
            count += entry.path().filename().string().starts_with(prefix) ? 1 : 0;
        return count;
    }

    const std::string prefix = "varkel-test-" + std::to_string(getpid());
    LinuxRuntime runtime;
    ShmNamedObjects objects{runtime, prefix};
};

TEST_F(ShmNamedObjectsTest, AMappingIsTheBlockAndNothingElse) {
    const std::string file = Path("mapping.SAFE_MEM_DATA_FILE");
    const auto before = test::OpenDescriptors();
    auto mapping = objects.CreateFileMapping(blockName, 1032);
    ASSERT_TRUE(mapping);
    const auto view = mapping->MapViewOfFile();
    ASSERT_EQ(view.size(), 1032u);
    EXPECT_EQ(test::FileContent(file), std::string(1032, '\0'));
    EXPECT_EQ(test::FileMode(file), 0600u);
    std::memcpy(view.data() + 520, "IMEI", 4);
    EXPECT_EQ(test::FileContent(file).substr(520, 4), "IMEI");
    mapping.reset();
    mapping = objects.CreateFileMapping(blockName, 1032);
    EXPECT_EQ(std::memcmp(mapping->MapViewOfFile().data() + 520, "IMEI", 4), 0) << "the object stays";
    EXPECT_TRUE(objects.CreateMutex(mutexName) && objects.CreateEvent(eventName));
    EXPECT_EQ(test::FileMode(Path("mutex.SAFE_MEM_DATA_FILE%20MUTEX")), 0600u);
    EXPECT_EQ(test::OpenDescriptors(), before);
    EXPECT_EQ(Files(), 3u) << "nothing but the objects";
}

TEST_F(ShmNamedObjectsTest, TrustsNoObjectThatItCouldNotHaveMade) {
    const std::string files[] = {Path("mutex.m"), Path("event.m"), Path("mapping.m")};
    const auto make = [&](const std::string& content, mode_t mode) {
        for (const std::string& file : files) {
            test::WriteFile(file, content);
            chmod(file.c_str(), mode);
        }
    };
    const auto expectRefused = [&](std::uint32_t error) {
        EXPECT_FALSE(objects.CreateMutex("m"));
        EXPECT_EQ(objects.GetLastError(), error);
        EXPECT_FALSE(objects.CreateFileMapping("m", 1032));
        EXPECT_EQ(objects.GetLastError(), error);
        EXPECT_FALSE(objects.CreateEvent("m"));
        EXPECT_EQ(objects.GetLastError(), error);
    };
    make("short", 0600);
    expectRefused(EINVAL);
    make(std::string(4096, '\0'), 0644);
    expectRefused(EACCES);
    make(std::string(4096, '\0'), 0600);
    EXPECT_FALSE(objects.CreateMutex("m") || objects.CreateEvent("m")) << "no magic";
    if (geteuid() == 0) {
        ASSERT_EQ(chown(files[2].c_str(), 1, 1), 0);
        EXPECT_FALSE(objects.CreateFileMapping("m", 1032)) << "another user's";
    }
    for (const std::string& file : files) {
        std::filesystem::remove(file);
        std::filesystem::create_symlink("/etc/passwd", file);
    }
    expectRefused(ELOOP);
    EXPECT_FALSE(objects.CreateEvent(""));
    EXPECT_FALSE(objects.CreateEvent(std::string(300, 'e')));
    EXPECT_FALSE(objects.CreateFileMapping("none", 0));
    EXPECT_FALSE(ShmNamedObjects(runtime, "../tmp/x").CreateEvent("e"));
}

TEST_F(ShmNamedObjectsTest, NamesThatDifferNameDifferentObjects) {
    const char* const names[] = {"a b", "a%20b", "a/b", "A B", "../a", "\xC3\xA4"};
    for (const char* name : names) {
        const auto event = objects.CreateEvent(name);
        ASSERT_TRUE(event) << name;
        EXPECT_EQ(event->Wait(0), WaitResult::Timeout) << name;
        event->Set();
    }
    EXPECT_EQ(Files(), std::size(names));
}

TEST_F(ShmNamedObjectsTest, TheMutexKeepsOthersOutAndCountsItsOwner) {
    const auto mutex = objects.CreateMutex(mutexName);
    ASSERT_TRUE(mutex);
    EXPECT_FALSE(mutex->ReleaseMutex()) << "not held";
    EXPECT_EQ(objects.GetLastError(), static_cast<std::uint32_t>(EPERM));
    EXPECT_EQ(mutex->Wait(0), WaitResult::Object0);
    EXPECT_EQ(mutex->Wait(infiniteTicks), WaitResult::Object0) << "the owner may take it again";
    const auto expectElsewhere = [&](WaitResult expected, Ticks timeout) {
        EXPECT_TRUE(Elsewhere([&] {
            const auto same = objects.CreateMutex(mutexName);
            const Ticks start = runtime.GetTickCount();
            EXPECT_EQ(same->Wait(timeout), expected);
            EXPECT_GE(TicksSince(runtime.GetTickCount(), start), timeout);
            EXPECT_EQ(same->ReleaseMutex(), expected == WaitResult::Object0);
        }));
    };
    expectElsewhere(WaitResult::Timeout, 50);
    EXPECT_TRUE(mutex->ReleaseMutex());
    expectElsewhere(WaitResult::Timeout, 0);
    EXPECT_TRUE(mutex->ReleaseMutex());
    expectElsewhere(WaitResult::Object0, 0);
    EXPECT_FALSE(mutex->ReleaseMutex());
}

TEST_F(ShmNamedObjectsTest, AHolderThatDiesLocksNobodyOut) {
    const auto mutex = objects.CreateMutex(mutexName);
    for (const Ticks timeout : {infiniteTicks, longEnough}) {
        const pid_t holder = InAnotherProcess([&] {
            EXPECT_EQ(objects.CreateMutex(mutexName).release()->Wait(0), WaitResult::Object0);
            raise(SIGKILL);
        });
        EXPECT_EQ(StatusOf(holder), SIGKILL);
        EXPECT_EQ(mutex->Wait(timeout), WaitResult::Object0);
        EXPECT_TRUE(mutex->ReleaseMutex());
        EXPECT_EQ(mutex->Wait(0), WaitResult::Object0) << "it is sound again";
        EXPECT_TRUE(mutex->ReleaseMutex());
    }
    // A holder that only drops its object has released it, and the thread's list of mutexes stays sound.
    EXPECT_EQ(objects.CreateMutex(mutexName)->Wait(0), WaitResult::Object0);
    EXPECT_EQ(objects.CreateMutex("another")->Wait(0), WaitResult::Object0);
    EXPECT_TRUE(Elsewhere([&] { EXPECT_EQ(objects.CreateMutex(mutexName)->Wait(0), WaitResult::Object0); }));
}

TEST_F(ShmNamedObjectsTest, AnEventReachesOtherProcesses) {
    const auto event = objects.CreateEvent(eventName);
    ASSERT_TRUE(event);
    const Ticks start = runtime.GetTickCount();
    EXPECT_EQ(event->Wait(50), WaitResult::Timeout);
    EXPECT_GE(TicksSince(runtime.GetTickCount(), start), 50u);
    event->Set();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(event->Wait(0), WaitResult::Object0) << "until somebody resets it";
    EXPECT_TRUE(Elsewhere([&] { objects.CreateEvent(eventName)->Reset(); }));
    EXPECT_EQ(event->Wait(0), WaitResult::Timeout);
    // Set and reset before the waiter gets to run: it has been let pass all the same.
    const pid_t waiter = InAnotherProcess(
        [&] { EXPECT_EQ(objects.CreateEvent(eventName)->Wait(longEnough), WaitResult::Object0); });
    AwaitInSystemCall(waiter, SYS_futex);
    kill(waiter, SIGSTOP);
    waitpid(waiter, nullptr, WUNTRACED);
    event->Set();
    event->Reset();
    kill(waiter, SIGCONT);
    EXPECT_EQ(StatusOf(waiter), 0);
}

TEST_F(ShmNamedObjectsTest, AKilledWaiterHoldsNobodyUp) {
    const auto event = objects.CreateEvent(eventName);
    for (int i = 0; i < 20; ++i) {
        const pid_t waiter = InAnotherProcess([&] { objects.CreateEvent(eventName)->Wait(infiniteTicks); });
        AwaitInSystemCall(waiter, SYS_futex);
        kill(waiter, SIGKILL);
        StatusOf(waiter);
        event->Set();
        EXPECT_EQ(event->Wait(0), WaitResult::Object0);
        event->Reset();
    }
}

TEST_F(ShmNamedObjectsTest, ProgramsThatCreateAtOnceGetTheSameObject) {
    for (int round = 0; round < 20; ++round) {
        const std::string name = "round " + std::to_string(round);
        const auto countTo100 = [&] {
            const auto mutex = objects.CreateMutex(name);
            const auto counter = objects.CreateFileMapping(name, sizeof(int));
            ASSERT_TRUE(mutex && counter);
            int& value = *reinterpret_cast<int*>(counter->MapViewOfFile().data());
            for (int i = 0; i < 100; ++i) {
                ASSERT_EQ(mutex->Wait(longEnough), WaitResult::Object0);
                ++value;
                ASSERT_TRUE(mutex->ReleaseMutex());
            }
        };
        pid_t children[6];
        for (pid_t& child : children)
            child = InAnotherProcess(countTo100);
        for (const pid_t child : children)
            ASSERT_EQ(StatusOf(child), 0);
        int total = 0;
        const auto counter = objects.CreateFileMapping(name, sizeof total);
        std::memcpy(&total, counter->MapViewOfFile().data(), sizeof total);
        ASSERT_EQ(total, 600);
    }
}

}  // namespace
}  // namespace varkel
