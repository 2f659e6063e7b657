// The program in its window, or on a screen that nobody sees.
#include <cstdlib>
#include <memory>
#include <string>

#include "app/unit.h"
#include "platform/linux/offscreen_display.h"
#include "platform/linux/sdl_display.h"
#include "session/varkel_dlg.h"
#include "ui/narrated_screens.h"
#include "ui/phone_screens.h"
#include "ui/robot_commands.h"
#include "ui/terminal/headless_commands.h"
#include "ui/toolkit/soft_keyboard.h"

namespace varkel {

namespace {

struct OpenDisplay {
    std::unique_ptr<Display> display;
    Robot robot;
};

OpenDisplay OpenOffscreen(Run& run, UnitFiles& files) {
    auto display = std::make_unique<OffscreenDisplay>(run.loop, files);
    OffscreenDisplay* const screen = display.get();
    Robot robot{.tap = [screen](Point at) { screen->Tap(at); },
                .key = [screen](const KeyEvent& key) { screen->Key(key); },
                .picture =
                    [screen](const std::string& file) {
                        screen->UpdateWindow();
                        return screen->SavePng(file);
                    }};
    return {std::move(display), std::move(robot)};
}

OpenDisplay OpenScreen(Run& run, Unit& unit) {
    UnitFiles& files = unit.Services().GetFiles();
    if (run.options.offscreen) return OpenOffscreen(run, files);
    const SdlDisplayOptions options{.fullScreen = run.options.fullScreen,
                                    .onProblem = [&unit](std::string_view problem) { unit.Report(problem); }};
    if (auto display = SdlDisplay::Create(run.runtime, run.loop, files, options))
        return {std::move(display), {}};
    unit.Report("there is no display: the screens are drawn for nobody");
    return OpenOffscreen(run, files);
}

}  // namespace

int RunWindowed(Run& run) {
    Unit unit(run);
    if (!unit.Usable()) return EXIT_FAILURE;
    LinuxPlatform& services = unit.Services();
    OpenDisplay screen = OpenScreen(run, unit);
    Desktop desktop({run.loop, *screen.display, services.GetWindows(), services.GetFiles(),
                     *services.GetRegistry(), services.GetLanguage()});
    SoftKeyboard keyboard(desktop);
    NoticeBoxes boxes(run.runtime, desktop);
    HeadlessScreens lines(run.runtime, run.loop, unit.Terminal(), services.GetLanguage());
    WindowScreens window(run.runtime, run.loop, desktop);
    NarratedScreens screens(window, boxes, lines, unit.Terminal());

    Platform platform = services.Services(screens);
    CVarkelDlg dialog(platform, screens, SessionOptionsOf(unit.Settings()));
    ScreenContext context{desktop, dialog, platform};
    window.Start(context, PhoneScreens(context));
    desktop.hooks.onSystemKey = [&dialog](KeyCode key) { dialog.OnKey(static_cast<int>(key)); };
    desktop.hooks.onClose = [&dialog] { dialog.Quit(); };

    HeadlessCommands commands(dialog, platform.windows, platform.codePage, unit.Terminal());
    RobotCommands robot(desktop, unit.Terminal(), screen.robot);
    run.quit = [&dialog] { dialog.Quit(); };
    lines.Start(dialog.State(), [&](std::string_view line) {
        if (!robot.Run(line)) commands.Run(line);
    });
    dialog.OnInitDialog(run.options.commandLine, run.options.logLevel);
    run.loop.Run([] { return false; });

    run.quit = nullptr;
    desktop.hooks.onSystemKey = nullptr;
    desktop.hooks.onClose = nullptr;
    boxes.DismissAll();
    window.Stop();
    return EXIT_SUCCESS;
}

}  // namespace varkel
