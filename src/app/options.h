// The command line.
#pragma once

#include <optional>
#include <string>

#include "platform/log.h"

namespace varkel {

struct Options {
    std::string commandLine;  // "1": a start in the background that opens the module
    bool headless = false;
    bool offscreen = false;   // pictures that nobody sees, for tours and tests
    bool fullScreen = false;  // a panel of its own
    std::string unitFile;     // empty: the user's own, or the defaults
    std::string port;         // empty: as the unit file says
    std::string assets;       // likewise
    std::string language;     // likewise
    std::string palette;      // likewise: night, day or auto
    LogLevel logLevel = LogLevel::Debug;
    bool debugOutput = false;
};

// Nothing when the program is to end at once, with `exitCode`.
std::optional<Options> ParseOptions(int argc, char** argv, int& exitCode);

}  // namespace varkel
