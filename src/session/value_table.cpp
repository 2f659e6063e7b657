#include "session/value_table.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "session/registry_values.h"

namespace varkel {

namespace {

constexpr std::size_t bufferUnits = 500;  // of a value, its NUL included

}  // namespace

ValueTable::ValueTable(Registry& registry, Notices& notices, std::string_view key,
                       std::vector<std::string> names)
    : m_registry(registry), m_notices(notices), m_key(key) {
    for (std::string& name : names)
        m_entries.push_back({std::move(name), {}});
}

bool ValueTable::Load() {
    bool created = false;
    const auto key = m_registry.RegCreateKeyEx(m_key, created);
    if (!key) return false;
    if (created) return Save();
    bool loaded = true;
    for (Entry& entry : m_entries) {
        const auto text = QueryText(*key, entry.name, bufferUnits * 2);
        entry.value = text.value_or("");
        loaded = loaded && text;
    }
    if (!loaded) m_notices.ShowMessageBox("load failed", "");
    return loaded;
}

bool ValueTable::Save() {
    bool created = false;
    const auto key = m_registry.RegCreateKeyEx(m_key, created);
    if (!key) return false;
    return std::all_of(m_entries.begin(), m_entries.end(), [&key](const Entry& entry) {
        const std::u16string units = Utf16FromUtf8(entry.value);
        return key->RegSetValueEx(entry.name, TextValue(units, (units.size() + 1) * 2));
    });
}

const std::string& ValueTable::Get(std::string_view name) const {
    static const std::string none;
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [name](const Entry& entry) { return entry.name == name; });
    return found == m_entries.end() ? none : found->value;
}

void ValueTable::Set(std::string_view name, std::string_view value) {
    for (Entry& entry : m_entries) {
        if (entry.name != name) continue;
        std::u16string units = Utf16FromUtf8(value);
        if (units.size() >= bufferUnits) {
            units.resize(bufferUnits - 1);
            const bool halfPair = units.back() >= 0xD800 && units.back() <= 0xDBFF;
            if (halfPair) units.pop_back();
        }
        entry.value = Utf8FromUtf16(units);
    }
}

ValueTable CallStateValues(Registry& registry, Notices& notices) {
    return {registry, notices, "Software\\Varkel\\", {"CallStatus", "HookDialed"}};
}

ValueTable VolumeValues(Registry& registry, Notices& notices) {
    return {registry, notices, "Software\\GPRSHDVol\\", {"HardVol", "SoftVol", "GPRSVol", "AvVol"}};
}

ValueTable HandleValues(Registry& registry, Notices& notices) {
    return {registry, notices, "Software\\HandleSaving\\", {"Mp3Handle", "Mp4Handle", "FlashHandle"}};
}

}  // namespace varkel
