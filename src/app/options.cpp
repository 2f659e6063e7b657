#include "app/options.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "platform/language.h"
#include "platform/linux/unit_settings.h"

namespace varkel {

std::optional<Options> ParseOptions(int argc, char** argv, int& exitCode) {
    Options options;
    int logLevel = static_cast<int>(options.logLevel);
    CLI::App app("Telephone and mobile data for an in-car head unit", "varkel");
    app.set_version_flag("--version", "varkel " VARKEL_VERSION);
    app.add_option("start", options.commandLine, "1 starts in the background and opens the modem")
        ->check(CLI::IsMember({"1"}));
    app.add_flag("--headless", options.headless, "lines on the terminal instead of a window");
    app.add_flag("--offscreen", options.offscreen, "draw the screens for nobody; commands touch them")
        ->excludes("--headless");
    app.add_flag("--fullscreen", options.fullScreen, "fill the panel");
    app.add_option("--unit-file", options.unitFile, "what to know of the unit")->check(CLI::ExistingFile);
    app.add_option("--port", options.port, "the modem's tty, for example /dev/ttyUSB2");
    app.add_option("--assets", options.assets, "the directory of texts, pictures and sounds");
    app.add_option("--language", options.language, "of the screens")
        ->check(CLI::IsMember(std::vector<std::string>(languageNames.begin(), languageNames.end())));
    app.add_option("--palette", options.palette, "the colours of the screens: night, day or auto")
        ->check(CLI::IsMember({"night", "day", "auto"}));
    app.add_option("--log-level", logLevel, "0 (nothing) to 5 (everything)")->check(CLI::Range(0, 5));
    app.add_flag("--debug-output", options.debugOutput, "the platform's debug output on standard error");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error);
        return std::nullopt;
    }
    options.logLevel = static_cast<LogLevel>(logLevel);
    return options;
}

}  // namespace varkel
