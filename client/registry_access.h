// Reads and writes the unit's registry, whether the program runs or not.
#pragma once

#include <optional>
#include <string>

#include "client/exit_code.h"

namespace varkel::client {

// `file` is the registry of the unit. Values are written and listed as registry_text.h says; a single value
// that is read is bare: "16", "text", "0a0b".

// Nothing, and it has been said why, when there is no such value.
std::optional<std::string> ReadRegistryValue(const std::string& file, const std::string& key,
                                             const std::string& name);
ExitCode GetRegistryValue(const std::string& file, const std::string& key, const std::string& name);
ExitCode SetRegistryValue(const std::string& file, const std::string& key, const std::string& name,
                          const std::string& value);
// The language of the screens: what was set, or `initial`, with which the unit begins.
std::string ReadLanguage(const std::string& file, const std::string& initial);
ExitCode SetLanguage(const std::string& file, const std::string& name);
// The values of `key` and of the keys below it, of all keys when it is empty, as an initial registry.
ExitCode ListRegistry(const std::string& file, const std::string& key);

}  // namespace varkel::client
