// The same life on real threads: tty, shared memory, SQLite and the runtime of the system. Time runs fast.
#include <gtest/gtest.h>

#include "tests/support/real_session.h"

namespace varkel::test {
namespace {

struct RealThreads : testing::Test, RealSession {
    RealThreads() : RealSession(10) {}
    void OpenModule() {
        dialog->OpenModule();
        ASSERT_TRUE(RunUntil([this] { return Open(); }, 120'000));
    }
};

TEST_F(RealThreads, OpenWithAPinAndShutDown) {
    unit.Command("pin 1234");
    screens.Type("9999");
    screens.Type("1234");
    dialog->OpenModule();
    ASSERT_TRUE(RunUntil([this] { return OpenEnds() == 1; }, 120'000));
    EXPECT_TRUE(Open());
    EXPECT_EQ(dialog->State().m_strImsi.Get(), "460001234567890");
    EXPECT_TRUE(RunUntil([this] { return windows.CountPosted("UM_QX_SIGNALSTAT 3 0") >= 2; }, 40'000));
    EXPECT_EQ(registry->List("Software\\QXGprsSim").size(), 2u);
    dialog->CloseModule();
    EXPECT_TRUE(RunUntil([this] { return dialog->State().MainScreenMode == ScreenMode::Closed; }, 20'000));
    EXPECT_EQ(unit.SuspendLocks(), 0);
}

TEST_F(RealThreads, ComeBackAfterTheDeviceVanished) {
    OpenModule();
    unit.Command("vanish");
    ASSERT_TRUE(RunUntil([this] { return screens.Count("warn 18") == 1; }, 30'000));
    unit.Command("appear");
    EXPECT_TRUE(RunUntil([this] { return Open(); }, 120'000));
    // At once, while the recovery is about to end; down until a poll has found out.
    unit.Command("usb down");
    ASSERT_TRUE(RunUntil([this] { return screens.Count("warn 18") == 2; }, 60'000));
    unit.Command("usb up");
    EXPECT_TRUE(RunUntil([this] { return Open(); }, 120'000));
}

TEST_F(RealThreads, KeepEveryMessageOfABurstWhileACallRings) {
    OpenModule();
    MessageHandling& messages = dialog->Messages();
    unit.Command("sms-burst 20");
    for (int ring = 0; ring < 5; ++ring) {
        unit.Command("urc RING");
        RunFor(150);
    }
    EXPECT_TRUE(RunUntil([&] { return messages.Boxes().inbox.Count() == 20; }, 60'000));
    EXPECT_TRUE(messages.SendSMDll("13800000000", "while they are announced"));
    EXPECT_TRUE(RunUntil([this] { return screens.Count("tip 2") == 1; }, 30'000));
    EXPECT_EQ(messages.Boxes().outbox.Count(), 1u);
}

TEST_F(RealThreads, ServeOtherProgramsOverADataLink) {
    dialUp.connects = true;
    int heard = 0;
    const auto listener = windows.AddProgram([&heard](const WindowMessage&) { ++heard; });
    const auto post = [this](unsigned number, std::uint32_t wParam) {
        windows.PostMessage(dialog->Window(), {WM_USER + number, wParam, 0});
    };
    OpenModule();
    ASSERT_TRUE(RunUntil([this] { return dialog->Data().Connected(); }, 120'000));
    const auto response = objects.CreateEvent("CGSMData RESP EVENT");
    for (int round = 0; round < 20; ++round) {
        response->Reset();
        post(1000, static_cast<std::uint32_t>(listener));
        for (const unsigned number : {1002u, 1003u, 1004u, 1005u})
            post(number, 0);
        EXPECT_TRUE(RunUntil([&] { return response->Wait(0) == WaitResult::Object0; }, 2000));
        if (round % 5 == 0) dialUp.Report(RasState::Disconnected);
        if (round % 5 == 2) dialog->Data().OpenNet();
    }
    EXPECT_TRUE(RunUntil([&heard] { return heard >= 20; }, 60'000));
    post(1001, static_cast<std::uint32_t>(listener));
    dialog->OnKey(0x5F);
    EXPECT_TRUE(RunUntil([this] { return dialog->State().MainScreenMode == ScreenMode::Closed; }, 30'000));
    EXPECT_FALSE(dialog->Data().Exists());
    dialog->OnKey(0xEE);
    EXPECT_TRUE(RunUntil([this] { return Open(); }, 120'000));
}

TEST_F(RealThreads, EndInTheMiddleOfEverything) {
    dialog->OpenModule();
    unit.Command("noise 0.01");
    RunFor(5'000);
    dialog->CloseModule();
    dialog->OpenModule();
    RunFor(7'000);
    Quit();
    EXPECT_EQ(dialog->State().MainScreenMode, ScreenMode::Closed);
    EXPECT_EQ(unit.SuspendLocks(), 0);
}

}  // namespace
}  // namespace varkel::test
