// A screen that nobody sees, in virtual time, with the toolkit on it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/linux/initial_registry.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/offscreen_display.h"
#include "tests/platform/pictures.h"
#include "tests/support/memory_registry.h"
#include "tests/support/memory_windows.h"
#include "tests/support/scratch.h"
#include "tests/support/virtual_runtime.h"
#include "ui/toolkit/desktop.h"
#include "ui/toolkit/message_box.h"
#include "ui/toolkit/soft_keyboard.h"

namespace varkel::test {

struct UiBench {
    // With the pictures and colours of a skin, "night" or "day", or with none.
    explicit UiBench(const std::string& skin = "", const std::string& languageName = "english")
        : files(scratch.Path(), VARKEL_ASSETS, skin.empty() ? "" : VARKEL_ASSETS "/skin-" + skin),
          language(files, languageName),
          display(loop, files),
          desktop({loop, display, windows, files, registry, language}),
          keyboard(desktop),
          boxes(runtime, desktop) {
        const std::string colors = FileContent(std::string(VARKEL_ASSETS "/skin-") + skin + "/registry.txt");
        LoadInitialRegistry(registry, colors);
    }

    // Lets the dialog thread work for that time.
    void RunFor(Ticks time) {
        constexpr TimerId limitTimer = 9001;
        bool over = false;
        loop.SetTimer(limitTimer, time, [&over] { over = true; });
        loop.Run([&over] { return over; });
        loop.KillTimer(limitTimer);
    }
    // Lets it do what is waiting.
    void Settle() { RunFor(1); }

    void Down(Point at) { Touch(TouchAction::Down, at); }
    void Move(Point at) { Touch(TouchAction::Move, at); }
    void Up(Point at) { Touch(TouchAction::Up, at); }
    void Tap(Point at) {
        Down(at);
        Up(at);
    }
    void Tap(const Rect& rect) { Tap(Middle(rect)); }
    void Key(KeyCode code, std::string text = {}) {
        display.Key({code, std::move(text)});
        Settle();
    }

    // A registry value that decides whether screens open like a curtain.
    void SetAnimation(bool on) { Settings(registry).WriteDword(Settings::dialogTypeKey, "Gprs", on ? 1 : 0); }
    // A picture of one colour at "\\ResidentFlash2\\test\\<name>.bmp".
    void PutPicture(const std::string& name, char color, std::size_t size = 8) {
        std::filesystem::create_directories(scratch / "ResidentFlash2/test");
        WriteFile(scratch / ("ResidentFlash2/test/" + name + ".bmp"),
                  Bmp(Rows(size, std::string(size, color))));
    }

    // Does something while a modal dialog is open, after `delay` ms.
    void Later(Ticks delay, std::function<void()> action) {
        const TimerId timer = m_nextTimer++;
        loop.SetTimer(timer, delay, [this, timer, action = std::move(action)] {
            loop.KillTimer(timer);
            action();
        });
    }

    static Point Middle(const Rect& rect) { return {rect.x + rect.width / 2, rect.y + rect.height / 2}; }

    VirtualRuntime runtime{1};
    MessageLoop loop{runtime};
    ScratchDirectory scratch;
    LinuxUnitFiles files;
    MemoryRegistry registry;
    MemoryWindows windows{loop};
    Language language;
    OffscreenDisplay display;
    Desktop desktop;
    SoftKeyboard keyboard;
    NoticeBoxes boxes;

  private:
    void Touch(TouchAction action, Point at) {
        display.Touch(action, at);
        Settle();
    }

    TimerId m_nextTimer = 9100;
};

}  // namespace varkel::test
