// The whole program without its window, on the simulated unit, in virtual time.
#pragma once

#include <cassert>
#include <memory>
#include <string>

#include "session/varkel_dlg.h"
#include "tests/support/code_pages.h"
#include "tests/support/memory_files.h"
#include "tests/support/memory_objects.h"
#include "tests/support/memory_processes.h"
#include "tests/support/memory_registry.h"
#include "tests/support/memory_windows.h"
#include "tests/support/operators.h"
#include "tests/support/recorded_notices.h"
#include "tests/support/recorded_sound.h"
#include "tests/support/recorded_speech.h"
#include "tests/support/scripted_data_link.h"
#include "tests/support/scripted_screens.h"
#include "tests/support/virtual_runtime.h"
#include "tests/support/virtual_serial.h"
#include "tests/support/virtual_unit.h"

namespace varkel::test {

struct SessionBench {
    explicit SessionBench(std::uint64_t seed = 1, const sim::UnitConfig& config = {})
        : runtime(seed), unit(runtime, serial, config, seed) {
        InstallOperators(files);
    }

    // Ends the program in order, if the test has not done so.
    ~SessionBench() {
        Quit();
        dialog.reset();
    }

    void Start(std::string_view commandLine = "1", SessionOptions options = {}) {
        dialog = std::make_unique<CVarkelDlg>(platform, screens, std::move(options));
        dialog->OnInitDialog(commandLine, LogLevel::Debug);
    }

    // A command of the simulated unit's console, and what the program makes of it in that time.
    void Happen(std::string_view command, Ticks time = 0) {
        unit.Command(command);
        if (time > 0) RunFor(time);
    }
    void Arrange(const std::vector<const char*>& commands) {
        for (const char* command : commands)
            unit.Command(command);
    }

    // Lets the dialog thread work for some time, or until something holds; false when it does not in that
    // time.
    void RunFor(Ticks time) {
        (void)RunUntil([] { return false; }, time);
    }
    bool RunUntil(const std::function<bool()>& holds, Ticks limit) {
        constexpr TimerId limitTimer = 9001;
        constexpr TimerId lookTimer = 9002;
        bool over = false;
        loop.SetTimer(limitTimer, limit, [&over] { over = true; });
        loop.SetTimer(lookTimer, 50, [] {});
        loop.Run([&] { return over || holds(); });
        loop.KillTimer(limitTimer);
        loop.KillTimer(lookTimer);
        return holds();
    }

    // What another program posts to the dialog.
    void Post(MessageId id, std::uint32_t wParam = 0, std::uint32_t lParam = 0) {
        windows.PostMessage(dialog->Window(), {id, wParam, lParam});
    }
    void Post(const char* name, std::uint32_t wParam = 0, std::uint32_t lParam = 0) {
        Post(windows.RegisterWindowMessage(name), wParam, lParam);
    }

    // Starts the program, unless the test has, and opens its module, which is at rest then.
    void OpenModule() {
        if (!dialog) Start("");
        dialog->OpenModule();
        [[maybe_unused]] const bool ended = RunUntilOpenEnds();
        assert(ended);
        RunFor(1000);
    }
    ScreenMode Mode() { return dialog->State().MainScreenMode; }
    // What the modem was sent since, without the signal poll.
    std::vector<std::string> Commands() {
        std::vector<std::string> commands;
        for (std::string& line : unit.TakeTrace()) {
            if (line.starts_with("AT") && line != "AT+CSQ") commands.push_back(std::move(line));
        }
        return commands;
    }

    bool OpenEnded() { return windows.CountPosted("3G_OPEN_END 0 0") > 0; }
    bool RunUntilOpenEnds(Ticks limit = 300'000) {
        const int before = windows.CountPosted("3G_OPEN_END 0 0");
        return RunUntil([this, before] { return windows.CountPosted("3G_OPEN_END 0 0") > before; }, limit);
    }

    void Quit() {
        if (!dialog || loop.Quitting()) return;
        dialog->Quit();
        loop.Run([] { return false; });
    }

    // What the doubles have written down so far.
    void ForgetRecords() {
        unit.TakeTrace();
        serial.Forget();
        windows.Forget();
        sound.Forget();
        notices.Forget();
        screens.Forget();
        dialUp.ForgetDialled();
        icmp.ForgetAsked();
    }

    std::string LogContent() { return files.Content("Nandflash\\3G.ini"); }

    VirtualRuntime runtime;
    MessageLoop loop{runtime};
    MemoryFiles files;
    Log log{runtime, files};
    MemoryRegistry registry;
    MemoryObjects objects{runtime};
    MemoryWindows windows{loop};
    MemoryProcesses processes{runtime};
    RecordedSound sound;
    RecordedSpeech speech;
    RecordedNotices notices;
    VirtualSerial serial{runtime};
    VirtualUnit unit;
    ScriptedDialUp dialUp{loop};
    ScriptedIcmp icmp{runtime};
    Language language{files, "english"};
    ScriptedScreens screens{runtime};
    const CodePage& codePage = CodePageNamed("GB18030");
    Platform platform{runtime, loop,      serial, registry, objects, windows,  unit,     dialUp, icmp,
                      files,   processes, sound,  speech,   notices, language, codePage, log};
    std::unique_ptr<CVarkelDlg> dialog;
};

}  // namespace varkel::test
