// The program's windows on a display that nobody sees, above the session and the simulated unit.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "tests/support/screen_bench.h"
#include "ui/window_screens.h"

namespace varkel::test {

struct CallScreens : testing::Test, DisplayBench {
    CallScreens() {
        dialog = std::make_unique<CVarkelDlg>(platform, shown);
        context.emplace(ScreenContext{desktop, *dialog, platform});
        shown.Start(*context, {});
        dialog->OnInitDialog("", LogLevel::Debug);
        OpenModule();
        unit.TakeTrace();
    }
    ~CallScreens() override {
        Quit();
        shown.Stop();
        dialog.reset();
    }

    // Lets the dialog thread do what is waiting.
    void Settle() { RunFor(5); }
    void Tap(Dialog& screen, int id) {
        TapOn(screen.Get<Control>(id));
        Settle();
    }
    void Touch(TouchAction action, Point at) {
        display.Touch(action, at);
        Settle();
    }
    void Tap(Point at) {
        Touch(TouchAction::Down, at);
        Touch(TouchAction::Up, at);
    }
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

    // The open screen of that kind; null when there is none.
    template <class Screen>
    Screen* Find() {
        for (Dialog* const screen : desktop.Stack()) {
            if (auto* const found = dynamic_cast<Screen*>(screen)) return found;
        }
        return nullptr;
    }
    template <class Screen>
    Screen& Await() {
        EXPECT_TRUE(RunUntil([this] { return Find<Screen>() && Find<Screen>()->TakesInput(); }, 5000));
        return *Find<Screen>();
    }
    // The code of the warning on the screen, which is dismissed; 0 when there is none.
    int TakeWarning() {
        auto* const warning = Find<CWarnDlg>();
        if (!warning) return 0;
        const int code = static_cast<int>(warning->Code());
        Press(KeyCode::Return);
        return code;
    }

    WindowScreens shown{runtime, loop, desktop};
};

}  // namespace varkel::test
