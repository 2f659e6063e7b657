// A program that runs for weeks: nothing drifts, nothing grows, and the tick count's wrap goes unnoticed.
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>

#include "tests/support/session_bench.h"

namespace varkel::test {
namespace {

constexpr Ticks minute = 60'000;

// VARKEL_DAYS in the environment, for longer runs. The first wrap comes after three minutes, the next one
// after 49.7 days.
int Days() {
    const char* const wanted = std::getenv("VARKEL_DAYS");
    return wanted ? std::atoi(wanted) : 7;
}

struct Uptime : testing::Test {
    Uptime() {
        bench.files.refuseToStart = true;  // no log, whose size would hide everything else
        bench.OpenModule();
        bench.dialUp.connects = true;
        bench.dialog->Data().RasHangUp();
        bench.RunFor(4000);
        bench.dialog->Data().OpenNet();
        bench.RunFor(6000);
    }

    // A call, a message each way, a lost link, and what clients ask.
    void LiveAnHour() {
        bench.unit.TakeTrace();
        const std::uint64_t start = bench.runtime.Elapsed();
        bench.unit.Command("call 13912345678");
        bench.RunFor(6000);
        bench.dialog->Calls().Answer();
        bench.RunFor(minute);
        ASSERT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::InCall);
        bench.dialog->Calls().HangUp();
        bench.unit.Command("sms 10010 \"hello\"");
        bench.RunFor(minute);
        bench.dialog->Messages().SendSMDll("13800000000", "hello", Sender::Client);
        bench.dialUp.Report(RasState::Disconnected);
        bench.RunFor(minute);
        ASSERT_FALSE(bench.dialog->Data().Exists());
        bench.dialog->Data().OpenNet();
        bench.windows.PostMessage(bench.dialog->Window(), {WM_USER + 1000, 0x12345, 0});
        const Ticks passed = static_cast<Ticks>(bench.runtime.Elapsed() - start);
        bench.RunFor(60 * minute - passed);
        polls += bench.unit.Count("AT+CSQ");
    }

    void Tidy() {
        MessageBoxes& boxes = bench.dialog->Messages().Boxes();
        ASSERT_EQ(boxes.inbox.FindSmsRecord().size(), 24u);
        ASSERT_EQ(boxes.outbox.FindSmsRecord().size(), 24u);
        ASSERT_EQ(boxes.inbox.DeleteAll(), StoreResult::Done);
        ASSERT_EQ(boxes.outbox.DeleteAll(), StoreResult::Done);
        CallLists& lists = bench.dialog->Calls().Lists();
        ASSERT_EQ(lists.received.FindCallRecord().size(), 24u);
        ASSERT_EQ(lists.received.DeleteAll(), StoreResult::Done);
        bench.dialog->State().m_nNewMessages = 0;
        bench.ForgetRecords();
    }

    SessionBench bench;
    int polls = 0;
};

TEST_F(Uptime, ChangesNothing) {
    std::size_t inUse = 0;
    for (int day = 0; day < Days(); ++day) {
        for (int hour = 0; hour < 24; ++hour) {
            LiveAnHour();
            ASSERT_FALSE(HasFatalFailure()) << "day " << day << ", hour " << hour;
        }
        Tidy();
        ASSERT_FALSE(HasFatalFailure()) << "day " << day;
        // The poll rests for the call, and the message that is sent; a link test asks once more.
        EXPECT_NEAR(polls, 24 * 353, 24 * 4) << "day " << day;
        polls = 0;
        const struct mallinfo2 memory = mallinfo2();
        if (day <= 1) inUse = memory.uordblks + memory.hblkhd;
        ASSERT_LE(memory.uordblks + memory.hblkhd, inUse + 64 * 1024) << "day " << day;
    }
    EXPECT_TRUE(bench.dialog->Data().Connected());
    EXPECT_FALSE(bench.dialog->State().m_externalClient);
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Idle);
    EXPECT_EQ(bench.dialUp.hangUps, 1 + 24 * Days());
    EXPECT_EQ(bench.unit.SuspendLocks(), 0);
}

}  // namespace
}  // namespace varkel::test
