// A list of named texts that is loaded from and saved to one registry key as a whole.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/notices.h"
#include "platform/registry.h"

namespace varkel {

// Loading is repeated before each change, so that what other programs wrote meanwhile is kept. One thread at
// a time.
class ValueTable {
  public:
    ValueTable(Registry& registry, Notices& notices, std::string_view key, std::vector<std::string> names);

    // Reads every value; writes the present ones instead when the key did not exist. When a value of an
    // existing key cannot be read, "load failed" is shown, that value is empty and the result is false.
    // Without the key the result is false, too, and the present values stay.
    [[nodiscard]] bool Load();
    // Writes every value; false at the first that cannot be written.
    [[nodiscard]] bool Save();

    const std::string& Get(std::string_view name) const;
    // Keeps at most 499 UTF-16 units. A name that is not in the table is ignored.
    void Set(std::string_view name, std::string_view value);

  private:
    struct Entry {
        std::string name;
        std::string value;
    };

    Registry& m_registry;
    Notices& m_notices;
    std::string m_key;
    std::vector<Entry> m_entries;
};

// The tables of the system.
ValueTable CallStateValues(Registry& registry, Notices& notices);  // "CallStatus", "HookDialed"
ValueTable VolumeValues(Registry& registry, Notices& notices);     // "GPRSVol" and its companions
ValueTable HandleValues(Registry& registry, Notices& notices);     // windows of the unit's players

}  // namespace varkel
