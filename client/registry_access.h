// Reads and writes the unit's registry, whether the program runs or not.
#pragma once

#include <string>

#include "client/exit_code.h"

namespace varkel::client {

// `file` is the registry of the unit. Values are written and listed as registry_text.h says; a single value
// that is read is printed bare.
ExitCode GetRegistryValue(const std::string& file, const std::string& key, const std::string& name);
ExitCode SetRegistryValue(const std::string& file, const std::string& key, const std::string& name,
                          const std::string& value);
// The values of `key` and of the keys below it, of all keys when it is empty, as an initial registry.
ExitCode ListRegistry(const std::string& file, const std::string& key);

}  // namespace varkel::client
