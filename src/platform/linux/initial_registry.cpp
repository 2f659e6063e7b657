#include "platform/linux/initial_registry.h"

#include <utility>

#include "platform/key_file.h"
#include "platform/linux/registry_text.h"
#include "platform/text.h"

namespace varkel {

namespace {

// Takes the entry, or says what is wrong with it.
std::string_view Take(const KeyFile::Entry& entry, std::vector<InitialValue>& values) {
    if (entry.section.empty()) return "a value without a key";
    auto value = ParseRegistryValue(entry.value);
    if (!value) return "not dword:, sz: or hex: with a value of that kind";
    std::erase_if(values, [&entry](const InitialValue& former) {
        return EqualIgnoringCase(former.key, entry.section) && EqualIgnoringCase(former.name, entry.key);
    });
    values.push_back({entry.section, entry.key, std::move(*value)});
    return {};
}

}  // namespace

std::vector<InitialValue> ParseInitialRegistry(std::string_view text, std::vector<std::string>& problems) {
    const KeyFile file = KeyFile::Parse(text);
    problems.insert(problems.end(), file.Errors().begin(), file.Errors().end());
    std::vector<InitialValue> values;
    for (const KeyFile::Entry& entry : file.Entries()) {
        const std::string_view problem = Take(entry, values);
        if (problem.empty()) continue;
        problems.push_back("line " + std::to_string(entry.line) + ": " + std::string(problem));
    }
    return values;
}

std::vector<std::string> LoadInitialRegistry(Registry& registry, std::string_view text) {
    std::vector<std::string> problems;
    for (const InitialValue& value : ParseInitialRegistry(text, problems)) {
        bool created = false;
        const auto key = registry.RegCreateKeyEx(value.key, created);
        if (key && key->RegQueryValueEx(value.name)) continue;
        if (!key || !key->RegSetValueEx(value.name, value.value))
            problems.push_back(value.key + ", " + value.name + " cannot be written");
    }
    return problems;
}

}  // namespace varkel
