// How a command of the client ends; the numbers are what a script sees.
#pragma once

#include <string_view>

namespace varkel::client {

enum class ExitCode {
    Ok = 0,
    Failed = 1,      // refused, or something on this machine does not work
    Usage = 2,       // the command line is not one
    NotRunning = 3,  // no program to talk to, or it ended meanwhile
    NoAnswer = 4,    // not within the time-out
};

// Says on standard error why, and hands the code on.
ExitCode Fail(ExitCode code, std::string_view why);

// Writes a line to standard output at once. False when nobody takes it any more.
bool PrintLine(std::string_view line);

}  // namespace varkel::client
