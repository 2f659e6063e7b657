// The whole program without its window, on real threads over a pseudo-terminal; `speed` makes time run fast.
#pragma once

#include <memory>
#include <string>
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
#include "tests/support/operators.h"
#include "tests/support/real_unit.h"
#include "tests/support/recorded_notices.h"
#include "tests/support/recorded_sound.h"
#include "tests/support/recorded_speech.h"
#include "tests/support/scratch.h"
#include "tests/support/scripted_data_link.h"
#include "tests/support/scripted_screens.h"

namespace varkel::test {

struct RealSession {
    explicit RealSession(unsigned times) : speed(times) {
        InstallOperators(files);
        dialog = std::make_unique<CVarkelDlg>(platform, screens);
        dialog->OnInitDialog("", LogLevel::Debug);
    }

    ~RealSession() {
        Quit();
        dialog.reset();
        ShmNamedObjects::Remove(prefix);
    }

    bool RunUntil(const std::function<bool()>& holds, Ticks limit) {
        bool over = false;
        loop.SetTimer(9001, limit, [&over] { over = true; });
        loop.SetTimer(9002, speed > 1 ? 50 : 5, [] {});
        loop.Run([&] { return over || holds(); });
        loop.KillTimer(9001);
        loop.KillTimer(9002);
        return holds();
    }
    void RunFor(Ticks time) {
        (void)RunUntil([] { return false; }, time);
    }

    int OpenEnds() { return windows.CountPosted("3G_OPEN_END 0 0"); }
    bool Open() { return dialog->State().MainScreenMode == ScreenMode::Idle; }

    void Quit() {
        if (loop.Quitting()) return;
        dialog->Quit();
        loop.Run([] { return false; });
    }

    const unsigned speed;
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
    ScriptedDialUp dialUp{loop};
    ScriptedIcmp icmp{runtime};
    Platform platform{runtime, loop,      serial, *registry, objects, windows,  unit,     dialUp, icmp,
                      files,   processes, sound,  speech,    notices, language, codePage, log};
    std::unique_ptr<CVarkelDlg> dialog;
};

}  // namespace varkel::test
