// The telephone's screens on a screen that nobody sees, above the session and the simulated unit.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/initial_registry.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/offscreen_display.h"
#include "tests/support/scratch.h"
#include "tests/support/session_bench.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/soft_keyboard.h"
#include "ui/toolkit/static_text.h"

namespace varkel::test {

// The display, its pictures and its texts; the session is still to be made.
struct DisplayBench : SessionBench {
    explicit DisplayBench(const std::string& skin = "night", const std::string& languageName = "english")
        : skinFiles(scratch.Path(), VARKEL_ASSETS, VARKEL_ASSETS "/skin-" + skin),
          display(loop, skinFiles),
          desktop({loop, display, windows, skinFiles, registry, language}) {
        LoadInitialRegistry(registry, FileContent(VARKEL_ASSETS "/skin-" + skin + "/registry.txt"));
        Settings(registry).WriteDword(Settings::dialogTypeKey, "Gprs", 0);
        const std::string texts = "\\ResidentFlash2\\bin\\Language\\" + languageName + ".txt";
        files.WriteWhole(texts, *skinFiles.ReadWhole(texts, 256 * 1024));
        (void)language.Change(languageName);
    }

    void TapOn(const Control& control) {
        const Rect& place = control.Place();
        display.Tap({place.x + place.width / 2, place.y + place.height / 2});
    }
    // The topmost screen, when it is of that kind.
    template <class Screen>
    Screen* Top() {
        return dynamic_cast<Screen*>(desktop.Active());
    }
    template <class Kind = StaticText>
    static std::string TextOf(const Dialog& screen, int id) {
        return screen.Get<Kind>(id).GetWindowText();
    }
    static bool Enabled(const Dialog& screen, int id) { return screen.Get<Control>(id).IsWindowEnabled(); }
    static bool Visible(const Dialog& screen, int id) { return screen.Get<Control>(id).IsWindowVisible(); }

    ScratchDirectory scratch;
    LinuxUnitFiles skinFiles;
    OffscreenDisplay display;
    Desktop desktop;
    std::optional<ScreenContext> context;
};

struct ScreenBench : DisplayBench {
    explicit ScreenBench(const std::string& skin = "night", const std::string& languageName = "english")
        : DisplayBench(skin, languageName) {
        Start("");
        context.emplace(ScreenContext{desktop, *dialog, platform});
        screens.onRepaint = [this] { loop.Post([this] { desktop.OnSessionChanged(); }); };
    }
    ~ScreenBench() {
        screens.onRepaint = nullptr;
        Quit();
    }

    // Does one thing after the other, `pause` ms apart, also while a modal screen is open, which has to be
    // closed in the end.
    using Step = std::function<void()>;
    void Play(const std::vector<Step>& steps, Ticks pause = 200) {
        constexpr TimerId stepTimer = 9003;
        std::size_t next = 0;
        loop.SetTimer(stepTimer, pause, [&] {
            if (next < steps.size()) steps[next++]();
        });
        RunFor(pause * static_cast<Ticks>(steps.size() + 1));
        loop.KillTimer(stepTimer);
    }
    Step Tap(Point at) {
        return [this, at] { display.Tap(at); };
    }
    // A control of the screen that is topmost by then.
    Step Tap(int id) {
        return [this, id] { TapOn(desktop.Active()->Get<Control>(id)); };
    }
    Step Type(std::string text) {
        return [this, text] { display.Key({KeyCode::None, text}); };
    }
    Step Press(KeyCode key) {
        return [this, key] { display.Key({key, {}}); };
    }

    SoftKeyboard keyboard{desktop};
};

}  // namespace varkel::test
