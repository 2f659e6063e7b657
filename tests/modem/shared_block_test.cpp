#include "modem/shared_block.h"

#include <gtest/gtest.h>

#include "tests/support/memory_files.h"
#include "tests/support/memory_objects.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

struct SharedBlockTest : testing::Test {
    VirtualRuntime runtime{1};
    MemoryFiles files;
    Log log{runtime, files};
    MemoryObjects objects{runtime};
};

TEST_F(SharedBlockTest, ForgetsWhatAnEarlierRunLeftButItsWindow) {
    CGSMData data(objects, log);
    const auto mapping = objects.CreateFileMapping("SAFE_MEM_DATA_FILE", 1032);
    const auto& block = *reinterpret_cast<const GsmDataLayout*>(mapping->MapViewOfFile().data());
    ASSERT_TRUE(data.SetWindowHandle(0x12345678));
    ASSERT_TRUE(data.SetConnectionStatus(ConnectionStatus::Up));
    ASSERT_TRUE(data.AnswerImsi(std::string(300, '4')));
    EXPECT_EQ(std::u16string(block.imsi), std::u16string(255, '4'));
    ASSERT_TRUE(data.AnswerImsi("460001234567890"));
    EXPECT_EQ(std::u16string(block.imsi), u"460001234567890") << "nothing of a longer one stays";
    ASSERT_TRUE(data.Clear());
    EXPECT_EQ(block.windowHandle, 0x12345678u);
    EXPECT_EQ(block.connectionStatus, 0u);
    EXPECT_EQ(block.imsi[0], 0);
}

TEST_F(SharedBlockTest, GivesUpALockThatAnotherHoldsAfterFiveSeconds) {
    CGSMData data(objects, log);
    const auto mutex = objects.CreateMutex("SAFE_MEM_DATA_FILE MUTEX");
    ASSERT_EQ(mutex->Wait(0), WaitResult::Object0);
    const std::uint64_t start = runtime.Elapsed();
    EXPECT_FALSE(data.SetWindowHandle(1));
    EXPECT_EQ(runtime.Elapsed() - start, 5000u);
    mutex->ReleaseMutex();
    EXPECT_TRUE(data.SetWindowHandle(1));
}

TEST_F(SharedBlockTest, LivesWithoutItsObjects) {
    std::string said;
    log.SetDebugSink([&said](std::string_view text) { said += text; });
    const auto expect = [&](bool& refusal, const char* text) {
        refusal = true;
        said.clear();
        CGSMData data(objects, log);
        EXPECT_FALSE(data.SetWindowHandle(1)) << text;
        EXPECT_NE(said.find(text), std::string::npos) << said;
        refusal = false;
    };
    expect(objects.refuseMutex, "Could not aquire info file mutex handle\n");
    expect(objects.refuseMapping, "Could not create file mapping for battery info file\r\n");
    expect(objects.refuseView, "Can't map view of memory mapped file\r\n");
}

}  // namespace
}  // namespace varkel::test
