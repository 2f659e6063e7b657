// How long opening the module takes on a pseudo-terminal, in real time, next to what it may take.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/linux/linux_unit_files.h"
#include "platform/linux/shm_named_objects.h"
#include "platform/linux/sqlite_registry.h"
#include "platform/linux/tty_serial_port.h"
#include "session/varkel_dlg.h"
#include "tests/support/bring_up_bar.h"
#include "tests/support/code_pages.h"
#include "tests/support/memory_processes.h"
#include "tests/support/memory_windows.h"
#include "tests/support/real_unit.h"
#include "tests/support/recorded_notices.h"
#include "tests/support/recorded_sound.h"
#include "tests/support/recorded_speech.h"
#include "tests/support/scripted_screens.h"

namespace {

using namespace varkel;
using namespace varkel::test;

// Milliseconds from the module's power-on to "3G_OPEN_END"; the unit lives in `directory`.
Ticks OpenOnce(const std::string& directory) {
    const std::string prefix = "varkel-bench-" + std::to_string(getpid());
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    LinuxUnitFiles files(directory + "/flash", directory + "/assets");
    Log log(runtime, files);
    const auto registry = SqliteRegistry::Open(directory + "/registry.db", {});
    ShmNamedObjects objects(runtime, prefix);
    MemoryWindows windows(loop);
    RealUnit unit(runtime, 1, directory + "/ttyModem", {});
    TtySerialPort serial(runtime, [&unit](std::string_view) { return unit.Link(); }, {});
    MemoryProcesses processes(runtime);
    RecordedSound sound;
    RecordedSpeech speech;
    RecordedNotices notices;
    const Language language(files, "english");
    ScriptedScreens screens(runtime);
    Platform platform{runtime, loop,      serial, *registry, objects, windows,  unit,
                      files,   processes, sound,  speech,    notices, language, CodePageNamed("GB18030"),
                      log};
    Ticks took = 0;
    {
        CVarkelDlg dialog(platform, screens);
        dialog.OnInitDialog("", LogLevel::Debug);
        dialog.OpenModule();
        // Power comes 500 ms after the first step.
        const Ticks powered = runtime.GetTickCount() + 500;
        loop.SetTimer(9001, 5, [] {});
        loop.Run([&windows] { return windows.CountPosted("3G_OPEN_END 0 0") > 0; });
        took = TicksSince(runtime.GetTickCount(), powered);
        dialog.Quit();
        loop.Run([] { return false; });
    }
    ShmNamedObjects::Remove(prefix);
    return took;
}

}  // namespace

int main() {
    constexpr int rounds = 3;
    const auto bar = static_cast<double>(BringUpBar({}));
    std::vector<double> ratios;
    for (int i = 0; i < rounds; ++i) {
        char directory[] = "/tmp/varkel-bench-XXXXXX";
        if (!mkdtemp(directory)) return EXIT_FAILURE;
        const auto took = static_cast<double>(OpenOnce(directory));
        std::filesystem::remove_all(directory);
        ratios.push_back(took / bar);
        std::printf("%.0f ms, may take %.0f ms\n", took, bar);
    }
    std::sort(ratios.begin(), ratios.end());
    std::printf("median: %.3f of what it may take\n", ratios[rounds / 2]);
    return EXIT_SUCCESS;
}
