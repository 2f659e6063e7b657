// The values with which a unit's registry begins, as text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace varkel {

struct InitialValue {
    std::string key;
    std::string name;
    RegistryValue value;
};

// The values, in the notation of registry_text.h, of a key file whose sections are registry keys:
//
//     [GPRS\OPENFLAG]
//     m_GprsAutoOpenFlag = dword:1
//
// Of two lines for one value the later one holds. `problems` gets what was wrong, "line 3: ..." each; the
// rest counts.
std::vector<InitialValue> ParseInitialRegistry(std::string_view text, std::vector<std::string>& problems);

// Writes those values of such a text that are missing. Returns what was wrong.
std::vector<std::string> LoadInitialRegistry(Registry& registry, std::string_view text);

}  // namespace varkel
