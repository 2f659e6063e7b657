// A program that runs for weeks: nothing drifts, nothing grows, and the tick count's wrap goes unnoticed.
#include <gtest/gtest.h>
#include <malloc.h>

#include "tests/support/seeds.h"
#include "tests/support/session_bench.h"

namespace varkel::test {
namespace {

constexpr Ticks minute = 60'000;

// VARKEL_DAYS in the environment, for longer runs. The first wrap comes after three minutes, the next one
// after 49.7 days.
const int days = static_cast<int>(NumberFrom("VARKEL_DAYS", 7));

struct Uptime : testing::Test, SessionBench {
    Uptime() {
        files.refuseToStart = true;  // no log, whose size would hide everything else
        OpenModule();
        dialUp.connects = true;
        dialog->Data().RasHangUp();
        RunFor(4000);
        dialog->Data().OpenNet();
        RunFor(6000);
    }

    // A call, a message each way, a lost link, and what clients ask.
    void LiveAnHour() {
        unit.TakeTrace();
        const std::uint64_t start = runtime.Elapsed();
        Happen("call 13912345678", 6000);
        dialog->Calls().Answer();
        RunFor(minute);
        ASSERT_EQ(Mode(), ScreenMode::InCall);
        dialog->Calls().HangUp();
        Happen("sms 10010 \"hello\"", minute);
        dialog->Messages().SendSMDll("13800000000", "hello", Sender::Client);
        dialUp.Report(RasState::Disconnected);
        RunFor(minute);
        ASSERT_FALSE(dialog->Data().Exists());
        dialog->Data().OpenNet();
        Post(WM_USER + 1000, 0x12345);
        const Ticks passed = static_cast<Ticks>(runtime.Elapsed() - start);
        RunFor(60 * minute - passed);
        polls += unit.Count("AT+CSQ");
    }

    void Tidy() {
        MessageBoxes& boxes = dialog->Messages().Boxes();
        ASSERT_EQ(boxes.inbox.FindSmsRecord().size(), 24u);
        ASSERT_EQ(boxes.outbox.FindSmsRecord().size(), 24u);
        ASSERT_EQ(boxes.inbox.DeleteAll(), StoreResult::Done);
        ASSERT_EQ(boxes.outbox.DeleteAll(), StoreResult::Done);
        CallLists& lists = dialog->Calls().Lists();
        ASSERT_EQ(lists.received.FindCallRecord().size(), 24u);
        ASSERT_EQ(lists.received.DeleteAll(), StoreResult::Done);
        dialog->State().m_nNewMessages = 0;
        ForgetRecords();
    }

    int polls = 0;
};

TEST_F(Uptime, ChangesNothing) {
    std::size_t inUse = 0;
    for (int day = 0; day < days; ++day) {
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
    EXPECT_TRUE(dialog->Data().Connected());
    EXPECT_FALSE(dialog->State().m_externalClient);
    EXPECT_EQ(Mode(), ScreenMode::Idle);
    EXPECT_EQ(dialUp.hangUps, 1 + 24 * days);
    EXPECT_EQ(unit.SuspendLocks(), 0);
}

}  // namespace
}  // namespace varkel::test
