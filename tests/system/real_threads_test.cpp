// The same life on real threads: tty, shared memory, SQLite and the runtime of the system. Time runs fast.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/shm_named_objects.h"
#include "platform/linux/sqlite_registry.h"
#include "platform/linux/tty_serial_port.h"
#include "session/varkel_dlg.h"
#include "tests/support/code_pages.h"
#include "tests/support/memory_processes.h"
#include "tests/support/memory_windows.h"
#include "tests/support/real_unit.h"
#include "tests/support/recorded_notices.h"
#include "tests/support/recorded_sound.h"
#include "tests/support/recorded_speech.h"
#include "tests/support/scratch.h"
#include "tests/support/scripted_screens.h"

namespace varkel::test {
namespace {

using testing::HasSubstr;

constexpr unsigned speed = 10;

struct RealThreads : testing::Test {
    RealThreads() {
        dialog = std::make_unique<CVarkelDlg>(platform, screens);
        dialog->OnInitDialog("", LogLevel::Debug);
    }

    ~RealThreads() override {
        Quit();
        dialog.reset();
        ShmNamedObjects::Remove(prefix);
    }

    bool RunUntil(const std::function<bool()>& holds, Ticks limit) {
        bool over = false;
        loop.SetTimer(9001, limit, [&over] { over = true; });
        loop.SetTimer(9002, 50, [] {});
        loop.Run([&] { return over || holds(); });
        loop.KillTimer(9001);
        loop.KillTimer(9002);
        return holds();
    }

    int OpenEnds() { return windows.CountPosted("3G_OPEN_END 0 0"); }
    bool Open() { return dialog->State().MainScreenMode == ScreenMode::Idle; }

    void Quit() {
        if (loop.Quitting()) return;
        dialog->Quit();
        loop.Run([] { return false; });
    }

    ScratchDirectory scratch;
    const std::string prefix = "varkel-test-" + std::to_string(getpid());
    LinuxRuntime runtime{speed};
    MessageLoop loop{runtime};
    LinuxUnitFiles files{scratch / "flash", scratch / "assets"};
    Log log{runtime, files};
    std::unique_ptr<SqliteRegistry> registry = SqliteRegistry::Open(scratch / "registry.db", {});
    ShmNamedObjects objects{runtime, prefix};
    MemoryWindows windows{loop};
    RealUnit unit{runtime, speed, scratch / "ttyModem", {}};
    TtySerialPort serial{runtime, [this](std::string_view) { return unit.Link(); }, {}};
    MemoryProcesses processes{runtime};
    RecordedSound sound;
    RecordedSpeech speech;
    RecordedNotices notices;
    Language language{files, "english"};
    ScriptedScreens screens{runtime};
    const CodePage& codePage = CodePageNamed("GB18030");
    Platform platform{runtime,   loop,  serial, *registry, objects,  windows,  unit, files,
                      processes, sound, speech, notices,   language, codePage, log};
    std::unique_ptr<CVarkelDlg> dialog;
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
    const auto reset = registry->List("Software\\QXGprsSim");
    EXPECT_EQ(reset.size(), 2u);
    dialog->CloseModule();
    EXPECT_TRUE(RunUntil([this] { return dialog->State().MainScreenMode == ScreenMode::Closed; }, 20'000));
    EXPECT_EQ(unit.SuspendLocks(), 0);
}

TEST_F(RealThreads, ComeBackAfterTheDeviceVanished) {
    dialog->OpenModule();
    ASSERT_TRUE(RunUntil([this] { return Open(); }, 120'000));
    unit.Command("vanish");
    ASSERT_TRUE(RunUntil([this] { return screens.Count("warn 18") == 1; }, 30'000));
    unit.Command("appear");
    EXPECT_TRUE(RunUntil([this] { return Open(); }, 120'000));
    unit.Command("module restart");
    ASSERT_TRUE(RunUntil([this] { return screens.Count("warn 18") == 2; }, 60'000));
    EXPECT_TRUE(RunUntil([this] { return Open(); }, 120'000));
}

TEST_F(RealThreads, KeepEveryMessageOfABurstWhileACallRings) {
    dialog->OpenModule();
    ASSERT_TRUE(RunUntil([this] { return Open(); }, 120'000));
    MessageHandling& messages = dialog->Messages();
    unit.Command("sms-burst 20");
    for (int ring = 0; ring < 5; ++ring) {
        unit.Command("urc RING");
        RunUntil([] { return false; }, 150);
    }
    EXPECT_TRUE(RunUntil([&] { return messages.Boxes().inbox.Count() == 20; }, 60'000));
    EXPECT_TRUE(messages.SendSMDll("13800000000", "while they are announced"));
    EXPECT_TRUE(RunUntil([this] { return screens.Count("tip 2") == 1; }, 30'000));
    EXPECT_EQ(messages.Boxes().outbox.Count(), 1u);
}

TEST_F(RealThreads, EndInTheMiddleOfEverything) {
    dialog->OpenModule();
    unit.Command("noise 0.01");
    RunUntil([] { return false; }, 5'000);
    dialog->CloseModule();
    dialog->OpenModule();
    RunUntil([] { return false; }, 7'000);
    Quit();
    EXPECT_EQ(dialog->State().MainScreenMode, ScreenMode::Closed);
    EXPECT_EQ(unit.SuspendLocks(), 0);
}

}  // namespace
}  // namespace varkel::test
