// The values with which a unit's registry begins, as text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace varkel {

// Writes the values, in the notation of registry_text.h, of a key file whose sections are registry keys:
//
//     [GPRS\OPENFLAG]
//     m_GprsAutoOpenFlag = dword:1
//
// Only values that are missing are written. Returns what was wrong, "line 3: ..." each; the rest counts.
std::vector<std::string> LoadInitialRegistry(Registry& registry, std::string_view text);

}  // namespace varkel
