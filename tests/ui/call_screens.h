// The program's windows on a display that nobody sees, above the session and the simulated unit.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/initial_registry.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/offscreen_display.h"
#include "tests/support/scratch.h"
#include "tests/support/session_bench.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/static_text.h"
#include "ui/window_screens.h"

namespace varkel::test {

struct CallScreens : SessionBench {
    explicit CallScreens(const std::string& skin = "night", const std::string& languageName = "english")
        : unitFiles(scratch.Path(), VARKEL_ASSETS, VARKEL_ASSETS "/skin-" + skin),
          display(loop, unitFiles),
          desktop({loop, display, windows, unitFiles, registry, language}) {
        LoadInitialRegistry(registry, FileContent(VARKEL_ASSETS "/skin-" + skin + "/registry.txt"));
        Settings(registry).WriteDword(Settings::dialogTypeKey, "Gprs", 0);
        const std::string texts = "\\ResidentFlash2\\bin\\Language\\" + languageName + ".txt";
        files.WriteWhole(texts, *unitFiles.ReadWhole(texts, 256 * 1024));
        EXPECT_TRUE(language.Change(languageName));
        dialog = std::make_unique<CVarkelDlg>(platform, shown);
        context.emplace(ScreenContext{desktop, *dialog, platform});
        shown.Start(*context, {});
        dialog->OnInitDialog("", LogLevel::Debug);
        OpenModule();
        unit.TakeTrace();
    }
    ~CallScreens() {
        Quit();
        shown.Stop();
        dialog.reset();
    }

    // Lets the dialog thread do what is waiting.
    void Settle() { RunFor(5); }
    void Tap(const Control& control) {
        const Rect& place = control.Place();
        display.Tap({place.x + place.width / 2, place.y + place.height / 2});
        Settle();
    }
    void Tap(Dialog& screen, int id) { Tap(screen.Get<Control>(id)); }
    void Type(std::string_view keys) {
        for (const char& key : keys) {
            display.Key({KeyCode::None, std::string(1, key)});
            Settle();
        }
    }
    void Press(KeyCode code) {
        display.Key({code, {}});
        Settle();
    }

    Dialog& Top() { return *desktop.Stack().back(); }
    // The open screen of that kind; null when there is none.
    template <class Screen>
    Screen* Find() {
        for (Dialog* const screen : desktop.Stack()) {
            if (auto* const found = dynamic_cast<Screen*>(screen)) return found;
        }
        return nullptr;
    }
    template <class Screen>
    Screen* Await(Ticks limit = 5000) {
        EXPECT_TRUE(RunUntil([this] { return Find<Screen>() && Find<Screen>()->TakesInput(); }, limit));
        return Find<Screen>();
    }
    // The code of the warning on the screen, which is dismissed; 0 when there is none.
    int TakeWarning() {
        auto* const warning = Find<CWarnDlg>();
        if (!warning) return 0;
        const int code = static_cast<int>(warning->Code());
        Press(KeyCode::Return);
        return code;
    }
    static std::string TextOf(Dialog& screen, int id) { return screen.Get<StaticText>(id).GetWindowText(); }

    ScratchDirectory scratch;
    LinuxUnitFiles unitFiles;
    OffscreenDisplay display;
    Desktop desktop;
    WindowScreens shown{runtime, loop, desktop};
    std::optional<ScreenContext> context;
};

}  // namespace varkel::test
