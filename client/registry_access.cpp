#include "client/registry_access.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "platform/linux/registry_text.h"
#include "platform/linux/sqlite_registry.h"
#include "platform/text.h"

namespace varkel::client {

namespace {

void Report(std::string_view problem) {
    Fail(ExitCode::Failed, problem);
}

// Reading makes no registry where there is none.
std::unique_ptr<SqliteRegistry> OpenExisting(const std::string& file) {
    std::error_code error;
    if (std::filesystem::exists(file, error)) return SqliteRegistry::Open(file, Report);
    Report("there is no registry " + file);
    return nullptr;
}

// A value of any program must not end a line or steer a terminal.
std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return text;
}

std::optional<std::string> Find(SqliteRegistry& registry, std::string_view key, std::string_view name) {
    const std::string_view path = key.substr(0, key.find_last_not_of('\\') + 1);
    const auto entries = registry.List(path);
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const RegistryEntry& entry) {
        return EqualIgnoringCase(entry.key, path) && EqualIgnoringCase(entry.name, name);
    });
    if (found == entries.end()) return std::nullopt;
    const std::string text = RegistryValueText(found->value);
    return text.substr(text.find(':') + 1);
}

constexpr const char* languageKey = "Device\\CONFIG";
constexpr const char* languageName = "Language";

}  // namespace

std::optional<std::string> ReadRegistryValue(const std::string& file, const std::string& key,
                                             const std::string& name) {
    const auto registry = OpenExisting(file);
    if (!registry) return std::nullopt;
    auto value = Find(*registry, key, name);
    if (!value) Report(key + " has no value " + name);
    return value;
}

ExitCode GetRegistryValue(const std::string& file, const std::string& key, const std::string& name) {
    const auto text = ReadRegistryValue(file, key, name);
    return text && PrintLine(*text) ? ExitCode::Ok : ExitCode::Failed;
}

ExitCode SetRegistryValue(const std::string& file, const std::string& key, const std::string& name,
                          const std::string& value) {
    const auto parsed = ParseRegistryValue(value);
    if (!parsed) return Fail(ExitCode::Usage, "not dword:, sz: or hex: with a value of that kind: " + value);
    const auto registry = SqliteRegistry::Open(file, Report);
    if (!registry) return ExitCode::Failed;
    bool created = false;
    const auto opened = registry->RegCreateKeyEx(key, created);
    if (!opened || !opened->RegSetValueEx(name, *parsed) || !registry->RegFlushKey())
        return Fail(ExitCode::Failed, "the value cannot be written");
    return ExitCode::Ok;
}

std::string ReadLanguage(const std::string& file, const std::string& initial) {
    const auto registry = OpenExisting(file);
    return (registry ? Find(*registry, languageKey, languageName) : std::nullopt).value_or(initial);
}

ExitCode SetLanguage(const std::string& file, const std::string& name) {
    return SetRegistryValue(file, languageKey, languageName, "sz:" + name);
}

ExitCode ListRegistry(const std::string& file, const std::string& key) {
    const auto registry = OpenExisting(file);
    if (!registry) return ExitCode::Failed;
    std::string heading;
    for (const RegistryEntry& entry : registry->List(key)) {
        if (!EqualIgnoringCase(entry.key, heading)) {
            if (!heading.empty()) PrintLine("");
            PrintLine("[" + OneLine(entry.key) + "]");
            heading = entry.key;
        }
        if (!PrintLine(OneLine(entry.name + " = " + RegistryValueText(entry.value)))) return ExitCode::Failed;
    }
    return ExitCode::Ok;
}

}  // namespace varkel::client
