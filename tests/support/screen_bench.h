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
#include "ui/toolkit/desktop.h"
#include "ui/toolkit/soft_keyboard.h"

namespace varkel::test {

struct ScreenBench : SessionBench {
    explicit ScreenBench(const std::string& skin = "night", const std::string& languageName = "english")
        : skinFiles(scratch.Path(), VARKEL_ASSETS, std::string(VARKEL_ASSETS "/skin-") + skin),
          texts(skinFiles, languageName),
          display(loop, skinFiles),
          desktop({loop, display, windows, skinFiles, registry, texts}),
          keyboard(desktop) {
        LoadInitialRegistry(registry,
                            FileContent(std::string(VARKEL_ASSETS "/skin-") + skin + "/registry.txt"));
        Settings(registry).WriteDword(Settings::dialogTypeKey, "Gprs", 0);
        Start("");
        context.emplace(ScreenContext{desktop, *dialog, platform});
        screens.onRepaint = [this] { loop.Post([this] { desktop.OnSessionChanged(); }); };
    }
    ~ScreenBench() {
        screens.onRepaint = nullptr;
        Quit();
    }

    // Does one thing after the other, `pause` ms apart, also while a modal screen is open, which is closed in
    // the end.
    using Step = std::function<void()>;
    void Play(std::vector<Step> steps, Ticks pause = 200) {
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
    Step Type(std::string text) {
        return [this, text] { display.Key({KeyCode::None, text}); };
    }
    Step Press(KeyCode key) {
        return [this, key] { display.Key({key, {}}); };
    }
    // The topmost screen, when it is of that kind.
    template <class Screen>
    Screen* Top() {
        return dynamic_cast<Screen*>(desktop.Active());
    }

    ScratchDirectory scratch;
    LinuxUnitFiles skinFiles;
    Language texts;
    OffscreenDisplay display;
    Desktop desktop;
    SoftKeyboard keyboard;
    std::optional<ScreenContext> context;
};

}  // namespace varkel::test
