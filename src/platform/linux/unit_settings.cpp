#include "platform/linux/unit_settings.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include "platform/key_file.h"
#include "platform/language.h"
#include "platform/linux/child_process.h"
#include "platform/linux/device_path.h"
#include "platform/linux/file_descriptor.h"
#include "platform/linux/iconv_code_page.h"
#include "platform/linux/name_encoding.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr std::size_t largestUnitFile = std::size_t{256} * 1024;

std::string UpperAscii(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

std::string Absolute(std::string_view path, const std::string& directory) {
    return (std::filesystem::path(directory) / path).lexically_normal().string();
}

// The setters of single values; false when the value cannot be used.
using Set = bool (*)(UnitSettings& settings, const std::string& value, const std::string& directory);

template <std::string UnitSettings::*Member>
bool SetPath(UnitSettings& settings, const std::string& value, const std::string& directory) {
    if (value.empty()) return false;
    settings.*Member = Absolute(value, directory);
    return true;
}

bool SetPalette(UnitSettings& settings, const std::string& value, const std::string&) {
    const auto choice = ParsePalette(value);
    if (!choice) return false;
    settings.palette = *choice;
    return true;
}

bool SetLanguage(UnitSettings& settings, const std::string& value, const std::string&) {
    const auto* const known = std::find(languageNames.begin(), languageNames.end(), LowerAscii(value));
    if (known == languageNames.end()) return false;
    settings.language = *known;
    return true;
}

bool SetCodePage(UnitSettings& settings, const std::string& value, const std::string&) {
    if (!IconvCodePage::Create(value)) return false;
    settings.systemCodePage = value;
    return true;
}

bool SetPrefix(UnitSettings& settings, const std::string& value, const std::string&) {
    if (value.empty() || value.size() > 64 || EncodedName(value, '%') != value) return false;
    settings.objectPrefix = value;
    return true;
}

bool SetBus(UnitSettings& settings, const std::string& value, const std::string&) {
    if (EqualIgnoringCase(value, "session")) {
        settings.bus = {BusKind::Session, {}};
    } else if (EqualIgnoringCase(value, "system")) {
        settings.bus = {BusKind::System, {}};
    } else if (EqualIgnoringCase(value, "none")) {
        settings.bus = {BusKind::None, {}};
    } else if (value.find(':') != std::string::npos) {
        settings.bus = {BusKind::Address, value};
    } else {
        return false;
    }
    return true;
}

bool SetCountryCode(UnitSettings& settings, const std::string& value, const std::string&) {
    constexpr std::size_t longest = 3;
    if (value.size() > longest || value.find_first_not_of("0123456789") != std::string::npos) return false;
    settings.countryCode = value;
    return true;
}

bool SetDriver(UnitSettings& settings, const std::string& value, const std::string&) {
    const bool bus = EqualIgnoringCase(value, "bus");
    if (!bus && !EqualIgnoringCase(value, "board")) return false;
    settings.driver = bus ? DriverKind::Bus : DriverKind::Board;
    return true;
}

bool SetModem(UnitSettings& settings, const std::string& value, const std::string&) {
    constexpr std::string_view kinds[] = {"unit", "standard", "auto"};
    const auto* const known = std::find(std::begin(kinds), std::end(kinds), LowerAscii(value));
    if (known == std::end(kinds)) return false;
    settings.modem = static_cast<ModemKind>(known - std::begin(kinds));
    return true;
}

bool SetDialUp(UnitSettings& settings, const std::string& value, const std::string&) {
    auto command = SplitCommand(value);
    if (command.empty()) return false;
    settings.dialUp = std::move(command);
    return true;
}

bool SetPing(UnitSettings& settings, const std::string& value, const std::string&) {
    constexpr std::size_t most = 8;
    std::vector<std::string> addresses;
    for (std::size_t at = 0; at <= value.size();) {
        const std::size_t comma = std::min(value.find(',', at), value.size());
        addresses.emplace_back(Trimmed(std::string_view(value).substr(at, comma - at)));
        in_addr number{};
        if (inet_pton(AF_INET, addresses.back().c_str(), &number) != 1) return false;
        at = comma + 1;
    }
    if (addresses.size() > most) return false;
    settings.pingAddresses = std::move(addresses);
    return true;
}

struct Key {
    std::string_view section;
    std::string_view name;
    Set set;
};

constexpr Key keys[] = {
    {"unit", "root", SetPath<&UnitSettings::root>},
    {"unit", "assets", SetPath<&UnitSettings::assets>},
    {"unit", "palette", SetPalette},
    {"unit", "language", SetLanguage},
    {"unit", "system_code_page", SetCodePage},
    {"unit", "country_code", SetCountryCode},
    {"unit", "registry", SetPath<&UnitSettings::registry>},
    {"unit", "initial_registry", SetPath<&UnitSettings::initialRegistry>},
    {"unit", "object_prefix", SetPrefix},
    {"unit", "bus", SetBus},
    {"unit", "driver", SetDriver},
    {"unit", "dial_up", SetDialUp},
    {"unit", "ping", SetPing},
    {"modem", "profile", SetModem},
};

// What is wrong with the entry; "" when it was taken.
std::string Take(const KeyFile::Entry& entry, const std::string& directory, UnitSettings& settings) {
    for (const Key& key : keys) {
        if (!EqualIgnoringCase(key.section, entry.section) || !EqualIgnoringCase(key.name, entry.key))
            continue;
        return key.set(settings, entry.value, directory) ? "" : "not a value for " + entry.key;
    }
    if (EqualIgnoringCase(entry.section, "unit") || EqualIgnoringCase(entry.section, "modem"))
        return "unknown key " + entry.key;
    if (EqualIgnoringCase(entry.section, "serial")) {
        if (entry.value.empty()) return "a device without a tty";
        settings.serial[UpperAscii(entry.key)] = Absolute(entry.value, directory);
        return {};
    }
    if (EqualIgnoringCase(entry.section, "programs")) {
        auto command = SplitCommand(entry.value);
        if (command.empty()) return "not a command";
        settings.programs[PlainDevicePath(entry.key)] = std::move(command);
        return {};
    }
    if (EqualIgnoringCase(entry.section, "driver")) return {};
    return "unknown section [" + entry.section + "]";
}

// The program's own place in one of the user's directories.
std::string UserDirectory(const char* variable, std::string_view belowHome) {
    const char* const directory = std::getenv(variable);
    if (directory && directory[0] == '/') return std::string(directory) + "/varkel";
    const char* const home = std::getenv("HOME");
    return std::string(home && home[0] == '/' ? home : "/tmp").append(belowHome) + "/varkel";
}

}  // namespace

std::string UnitSettings::TtyOf(std::string_view deviceName) const {
    const auto found = serial.find(UpperAscii(deviceName));
    return found == serial.end() ? std::string() : found->second;
}

UnitSettings DefaultUnitSettings() {
    const std::string data = UserDirectory("XDG_DATA_HOME", "/.local/share");
    UnitSettings settings;
    settings.root = data + "/flash";
    settings.assets = VARKEL_ASSETS;
    settings.language = "english";
    settings.systemCodePage = "GB18030";
    settings.countryCode = "86";
    settings.registry = data + "/registry.db";
    settings.objectPrefix = "varkel-" + std::to_string(geteuid());
    settings.dialUp = {"/usr/sbin/pppd"};
    settings.serial["COM7:"] = "/dev/ttyUSB2";
    return settings;
}

UnitSettings ParseUnitSettings(std::string_view text, const std::string& directory) {
    UnitSettings settings = DefaultUnitSettings();
    const KeyFile file = KeyFile::Parse(text);
    settings.errors = file.Errors();
    for (const KeyFile::Entry& entry : file.Entries()) {
        const std::string problem = Take(entry, directory, settings);
        if (!problem.empty())
            settings.errors.push_back("line " + std::to_string(entry.line) + ": " + problem);
    }
    settings.board = BoardAnswers::Parse(file);
    settings.errors.insert(settings.errors.end(), settings.board.errors.begin(), settings.board.errors.end());
    return settings;
}

UnitSettings UserUnitSettings() {
    const std::string path = UserDirectory("XDG_CONFIG_HOME", "/.config") + "/unit.conf";
    return access(path.c_str(), F_OK) == 0 ? LoadUnitSettings(path) : DefaultUnitSettings();
}

UnitSettings LoadUnitSettings(const std::string& path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const auto text = file ? ReadAll(file.Get(), largestUnitFile) : std::nullopt;
    if (!text) {
        UnitSettings settings = DefaultUnitSettings();
        settings.errors.push_back(path + " cannot be read, or is larger than 256 KiB");
        return settings;
    }
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    return ParseUnitSettings(*text, absolute.parent_path().string());
}

}  // namespace varkel
