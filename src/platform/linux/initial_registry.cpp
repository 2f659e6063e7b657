#include "platform/linux/initial_registry.h"

#include <algorithm>

#include "platform/key_file.h"
#include "platform/linux/registry_text.h"

namespace varkel {

namespace {

// What is wrong with the entry; "" when it was written or stood there already.
std::string_view Load(Registry& registry, const KeyFile::Entry& entry) {
    if (entry.section.empty()) return "a value without a key";
    const auto value = ParseRegistryValue(entry.value);
    if (!value) return "not dword:, sz: or hex: with a value of that kind";
    bool created = false;
    const auto key = registry.RegCreateKeyEx(entry.section, created);
    if (!key) return "the key cannot be made";
    if (key->RegQueryValueEx(entry.key) || key->RegSetValueEx(entry.key, *value)) return {};
    return "the value cannot be written";
}

}  // namespace

std::vector<std::string> LoadInitialRegistry(Registry& registry, std::string_view text) {
    const KeyFile file = KeyFile::Parse(text);
    std::vector<std::string> problems;
    // Of two lines for one value the later one holds, so it comes first.
    for (auto entry = file.Entries().rbegin(); entry != file.Entries().rend(); ++entry) {
        const std::string_view problem = Load(registry, *entry);
        if (problem.empty()) continue;
        problems.push_back("line " + std::to_string(entry->line) + ": " + std::string(problem));
    }
    std::reverse(problems.begin(), problems.end());
    problems.insert(problems.begin(), file.Errors().begin(), file.Errors().end());
    return problems;
}

}  // namespace varkel
