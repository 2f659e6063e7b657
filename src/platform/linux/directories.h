// Directories of the user's own.
#pragma once

#include <string>

namespace varkel {

// Makes the directory and those above it that are missing, for the user alone (0700). An empty path stands
// for the current directory.
bool MakePrivateDirectories(const std::string& path);

}  // namespace varkel
