// The directory in which the simulated unit lives: its flash, its registry, its modem, its unit file.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/file_descriptor.h"
#include "simulator/modem_settings.h"

namespace varkel::sim {

struct UnitPlace {
    std::string directory;
    std::string unitFile;      // for the hosted program
    std::string tty;           // the link to the modem's device
    std::string objectPrefix;  // of the unit's named objects; its own for each directory
    FileDescriptor lock;       // keeps other simulators out of the directory
};

// What the unit file names.
struct UnitParts {
    std::string assets = {};       // may be empty
    std::string dialProgram = {};  // likewise
    ModemKind modem = ModemKind::Unit;
};

// Makes the directory, for the user alone, and writes the files of the unit as it leaves the factory; flash
// and registry stay as they are. Nothing when that fails, and `fault` says why.
std::optional<UnitPlace> MakeUnitPlace(const std::string& directory, UnitParts parts, std::string& fault);

// Where the unit's dialling program stands: beside this one.
std::string DialProgramPath();

// Where the unit lives unless somebody says otherwise.
std::string DefaultUnitDirectory();

}  // namespace varkel::sim
