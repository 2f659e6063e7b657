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
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/support/scratch.h"

namespace varkel {
namespace {

constexpr Ticks longEnough = 20'000;
constexpr const char* blockName = "SAFE_MEM_DATA_FILE";
constexpr const char* mutexName = "SAFE_MEM_DATA_FILE MUTEX";
constexpr const char* eventName = "CGSMData RESP EVENT";

// Runs `body` in another process; its number of failed expectations must be 0.
template <class Body>
pid_t InAnotherProcess(Body body) {
    const pid_t child = fork();
    if (child == 0) {
        body();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    return child;
}

int StatusOf(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    return status;
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
    const auto before = test::OpenDescriptors();
    auto mapping = objects.CreateFileMapping(blockName, 1032);
    ASSERT_TRUE(mapping);
    const auto view = mapping->MapViewOfFile();
    ASSERT_EQ(view.size(), 1032u);
    EXPECT_TRUE(std::all_of(view.begin(), view.end(), [](std::byte b) { return b == std::byte{0}; }));
    std::memcpy(view.data() + 8, "IMSI", 4);
    EXPECT_EQ(test::FileContent(Path("mapping.SAFE_MEM_DATA_FILE")).substr(8, 4), "IMSI");
    EXPECT_EQ(std::filesystem::file_size(Path("mapping.SAFE_MEM_DATA_FILE")), 1032u);
    EXPECT_EQ(test::FileMode(Path("mapping.SAFE_MEM_DATA_FILE")), 0600u);
    EXPECT_EQ(StatusOf(InAnotherProcess([&] {
                  const auto same = objects.CreateFileMapping(blockName, 1032);
                  EXPECT_EQ(std::memcmp(same->MapViewOfFile().data() + 8, "IMSI", 4), 0);
                  std::memcpy(same->MapViewOfFile().data() + 520, "IMEI", 4);
              })),
              0);
    EXPECT_EQ(std::memcmp(view.data() + 520, "IMEI", 4), 0);
    mapping.reset();
    mapping = objects.CreateFileMapping(blockName, 1032);
    EXPECT_EQ(std::memcmp(mapping->MapViewOfFile().data() + 520, "IMEI", 4), 0) << "the object stays";
    EXPECT_TRUE(objects.CreateMutex(mutexName));
    EXPECT_TRUE(objects.CreateEvent(eventName));
    EXPECT_EQ(test::FileMode(Path("mutex.SAFE_MEM_DATA_FILE%20MUTEX")), 0600u);
    EXPECT_EQ(test::OpenDescriptors(), before);
    EXPECT_EQ(Files(), 3u) << "nothing but the objects";
}

TEST_F(ShmNamedObjectsTest, TrustsNoObjectThatItCouldNotHaveMade) {
    const std::string mutex = Path("mutex.m");
    const std::string mapping = Path("mapping.m");
    const std::string event = Path("event.m");
    const auto refused = [&](std::uint32_t error) {
        EXPECT_FALSE(objects.CreateMutex("m"));
        EXPECT_EQ(objects.GetLastError(), error);
        EXPECT_FALSE(objects.CreateFileMapping("m", 1032));
        EXPECT_EQ(objects.GetLastError(), error);
        EXPECT_FALSE(objects.CreateEvent("m"));
        EXPECT_EQ(objects.GetLastError(), error);
    };
    for (const std::string& file : {mutex, mapping, event}) {
        test::WriteFile(file, "short");
        chmod(file.c_str(), 0600);
    }
    refused(EINVAL);
    for (const std::string& file : {mutex, mapping, event}) {
        test::WriteFile(file, std::string(4096, '\0'));
        chmod(file.c_str(), 0644);
    }
    refused(EACCES);
    for (const std::string& file : {mutex, event})
        chmod(file.c_str(), 0600);
    EXPECT_FALSE(objects.CreateMutex("m")) << "no magic";
    EXPECT_FALSE(objects.CreateEvent("m")) << "no magic";
    for (const std::string& file : {mutex, mapping, event}) {
        std::filesystem::remove(file);
        std::filesystem::create_symlink("/etc/passwd", file);
    }
    refused(ELOOP);
    if (geteuid() == 0) {
        std::filesystem::remove(mapping);
        test::WriteFile(mapping, std::string(4096, '\0'));
        chmod(mapping.c_str(), 0600);
        ASSERT_EQ(chown(mapping.c_str(), 1, 1), 0);
        EXPECT_FALSE(objects.CreateFileMapping("m", 1032)) << "another user's";
    }
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
    const auto elsewhere = [&](WaitResult expected, Ticks timeout) {
        return StatusOf(InAnotherProcess([&] {
            const auto same = objects.CreateMutex(mutexName);
            const Ticks start = runtime.GetTickCount();
            EXPECT_EQ(same->Wait(timeout), expected);
            const Ticks waited = TicksSince(runtime.GetTickCount(), start);
            EXPECT_TRUE(expected == WaitResult::Object0 || waited >= timeout);
            EXPECT_EQ(same->ReleaseMutex(), expected == WaitResult::Object0);
        }));
    };
    EXPECT_EQ(elsewhere(WaitResult::Timeout, 50), 0);
    EXPECT_TRUE(mutex->ReleaseMutex());
    EXPECT_EQ(elsewhere(WaitResult::Timeout, 0), 0);
    EXPECT_TRUE(mutex->ReleaseMutex());
    EXPECT_EQ(elsewhere(WaitResult::Object0, 0), 0);
    EXPECT_FALSE(mutex->ReleaseMutex());
}

TEST_F(ShmNamedObjectsTest, AHolderThatDiesLocksNobodyOut) {
    const auto mutex = objects.CreateMutex(mutexName);
    for (const Ticks timeout : {infiniteTicks, longEnough}) {
        EXPECT_EQ(StatusOf(InAnotherProcess([&] {
                      EXPECT_EQ(objects.CreateMutex(mutexName).release()->Wait(0), WaitResult::Object0);
                      kill(getpid(), SIGKILL);
                  })),
                  SIGKILL);
        EXPECT_EQ(mutex->Wait(timeout), WaitResult::Object0);
        EXPECT_TRUE(mutex->ReleaseMutex());
        EXPECT_EQ(mutex->Wait(0), WaitResult::Object0) << "it is sound again";
        EXPECT_TRUE(mutex->ReleaseMutex());
    }
    // A holder that only drops its object has released it, and the thread's list of mutexes stays sound.
    EXPECT_EQ(objects.CreateMutex(mutexName)->Wait(0), WaitResult::Object0);
    EXPECT_EQ(objects.CreateMutex("another")->Wait(0), WaitResult::Object0);
    EXPECT_EQ(StatusOf(InAnotherProcess(
                  [&] { EXPECT_EQ(objects.CreateMutex(mutexName)->Wait(0), WaitResult::Object0); })),
              0);
}

TEST_F(ShmNamedObjectsTest, AnEventReachesOtherProcesses) {
    const auto event = objects.CreateEvent(eventName);
    ASSERT_TRUE(event);
    const Ticks start = runtime.GetTickCount();
    EXPECT_EQ(event->Wait(50), WaitResult::Timeout);
    EXPECT_GE(TicksSince(runtime.GetTickCount(), start), 50u);
    const pid_t setter = InAnotherProcess([&] { objects.CreateEvent(eventName)->Set(); });
    EXPECT_EQ(event->Wait(longEnough), WaitResult::Object0);
    EXPECT_EQ(StatusOf(setter), 0);
    EXPECT_EQ(event->Wait(0), WaitResult::Object0) << "until somebody resets it";
    EXPECT_EQ(StatusOf(InAnotherProcess([&] { objects.CreateEvent(eventName)->Reset(); })), 0);
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
    constexpr int programs = 6;
    for (int round = 0; round < 20; ++round) {
        const std::string name = "round " + std::to_string(round);
        pid_t children[programs];
        for (pid_t& child : children) {
            child = InAnotherProcess([&] {
                const auto mutex = objects.CreateMutex(name);
                const auto counter = objects.CreateFileMapping(name, sizeof(int));
                ASSERT_TRUE(mutex && counter);
                for (int i = 0; i < 100; ++i) {
                    ASSERT_EQ(mutex->Wait(longEnough), WaitResult::Object0);
                    int value = 0;
                    std::memcpy(&value, counter->MapViewOfFile().data(), sizeof value);
                    ++value;
                    std::memcpy(counter->MapViewOfFile().data(), &value, sizeof value);
                    ASSERT_TRUE(mutex->ReleaseMutex());
                }
            });
        }
        for (const pid_t child : children)
            ASSERT_EQ(StatusOf(child), 0);
        int total = 0;
        std::memcpy(&total, objects.CreateFileMapping(name, sizeof(int))->MapViewOfFile().data(),
                    sizeof total);
        ASSERT_EQ(total, programs * 100);
    }
}

}  // namespace
}  // namespace varkel
