// The program: command line, services, session and screens put together.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "app/linux_platform.h"
#include "app/options.h"
#include "platform/linux/console_terminal.h"
#include "platform/linux/termination.h"
#include "session/varkel_dlg.h"
#include "ui/headless_commands.h"
#include "ui/headless_screens.h"

namespace {

using namespace varkel;

constexpr int cannotRun = 1;

UnitSettings LoadSettings(const Options& options) {
    UnitSettings settings =
        options.unitFile.empty() ? DefaultUnitSettings() : LoadUnitSettings(options.unitFile);
    if (!options.port.empty()) settings.serial["COM7:"] = options.port;
    if (!options.assets.empty()) settings.assets = options.assets;
    settings.palette = ParsePalette(options.palette).value_or(settings.palette);
    return settings;
}

const ModemProfile* ProfileOf(ModemKind modem) {
    switch (modem) {
        case ModemKind::Unit: break;
        case ModemKind::Standard: return &standardModule;
        case ModemKind::Auto: return nullptr;
    }
    return &unitModule;
}

// Runs the session until it ends.
int RunHeadless(const Options& options, LinuxRuntime& runtime, MessageLoop& loop,
                std::function<void()>& quit) {
    ConsoleTerminal terminal(loop);
    Log* log = nullptr;
    const auto onProblem = [&](std::string_view problem) {
        terminal.PrintLine("[unit] " + std::string(problem));
        if (log) log->Trace("[unit]--%.*s", static_cast<int>(problem.size()), problem.data());
    };
    const UnitSettings settings = LoadSettings(options);
    for (const std::string& error : settings.errors)
        onProblem("unit file: " + error);

    LinuxPlatform linuxPlatform(runtime, loop, settings, onProblem);
    if (!linuxPlatform.GetRegistry()) return cannotRun;
    log = &linuxPlatform.GetLog();
    if (options.debugOutput) {
        log->SetDebugSink([](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); });
    }

    HeadlessScreens screens(runtime, loop, terminal, linuxPlatform.GetLanguage());
    Platform platform = linuxPlatform.Services(screens);
    CVarkelDlg dialog(platform, screens,
                      {.profile = ProfileOf(settings.modem),
                       .countryCode = settings.countryCode,
                       .pingAddresses = settings.pingAddresses});
    HeadlessCommands commands(dialog, platform.windows, platform.codePage, terminal);
    quit = [&dialog] { dialog.Quit(); };
    screens.Start(dialog.State(), [&commands](std::string_view line) { commands.Run(line); });
    dialog.OnInitDialog(options.commandLine, options.logLevel);
    loop.Run([] { return false; });
    quit = nullptr;
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    int exitCode = EXIT_SUCCESS;
    const auto options = ParseOptions(argc, argv, exitCode);
    if (!options) return exitCode;
    if (!options->headless) {
        std::fputs("varkel: there is no window yet; start it with --headless\n", stderr);
        return cannotRun;
    }
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    std::function<void()> quit;  // of the dialog thread
    {
        Termination termination([&] {
            loop.Post([&quit] {
                if (quit) quit();
            });
        });
        exitCode = RunHeadless(*options, runtime, loop, quit);
    }
    // A thread that hangs in a driver must not keep the program from ending.
    if (runtime.RunningThreads() > 0) std::quick_exit(exitCode);
    return exitCode;
}
