// The client's command line.
#pragma once

#include <optional>
#include <string>

#include "client/exit_code.h"
#include "platform/runtime.h"

namespace varkel::client {

enum class Command {
    Show,
    Hide,
    Quit,
    Open,
    Imsi,
    Imei,
    Status,
    Watch,
    Send,
    Language,
    CallSos,
    CallHelp,
    RegGet,
    RegSet,
    RegList,
};

struct CommandLine {
    Command command = Command::Status;
    std::string unitFile;          // "" = the unit without one
    std::optional<Ticks> timeout;  // ms; each command has its own
    std::string number;
    std::string text;
    std::string language;
    std::string key;
    std::string name;
    std::string value;
};

// Nothing when the command line asks for help or is wrong: it has been answered, and `exitCode` says how.
std::optional<CommandLine> ParseCommandLine(int argc, char** argv, ExitCode& exitCode);

}  // namespace varkel::client
