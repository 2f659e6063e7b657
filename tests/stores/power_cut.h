// What a power cut leaves of a directory.
#pragma once

#include <cstddef>
#include <map>
#include <random>
#include <span>
#include <string>

#include "tests/stores/disk_double.h"

namespace varkel::test {

using DirectoryContent = std::map<std::string, std::string>;  // a file's bytes by its name

// The power goes after the first `cut` steps. What was synced by then is there. Of the rest each change of a
// name is there or not, a write is there, not, or in some of its sectors, and later changes may have been
// made before earlier ones. A renaming is made whole or not at all.
DirectoryContent AfterPowerCut(const DirectoryContent& before, std::span<const DiskStep> steps,
                               std::size_t cut, std::mt19937_64& random);

// The same when only the program is killed: all steps up to there are there.
DirectoryContent AfterKill(const DirectoryContent& before, std::span<const DiskStep> steps, std::size_t cut);

}  // namespace varkel::test
