// The program on a terminal.
#include <cstdlib>

#include "app/unit.h"
#include "session/varkel_dlg.h"
#include "ui/terminal/headless_commands.h"
#include "ui/terminal/headless_screens.h"

namespace varkel {

int RunHeadless(Run& run) {
    Unit unit(run);
    if (!unit.Usable()) return EXIT_FAILURE;
    HeadlessScreens screens(run.runtime, run.loop, unit.Terminal(), unit.Services().GetLanguage());
    Platform platform = unit.Services().Services(screens);
    CVarkelDlg dialog(platform, screens, SessionOptionsOf(unit.Settings()));
    HeadlessCommands commands(dialog, platform.windows, platform.codePage, unit.Terminal());
    run.quit = [&dialog] { dialog.Quit(); };
    screens.Start(dialog.State(), [&commands](std::string_view line) { commands.Run(line); });
    dialog.OnInitDialog(run.options.commandLine, run.options.logLevel);
    run.loop.Run([] { return false; });
    run.quit = nullptr;
    return EXIT_SUCCESS;
}

}  // namespace varkel
