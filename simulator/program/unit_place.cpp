#include "simulator/program/unit_place.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

#include "platform/linux/directories.h"
#include "platform/linux/file_descriptor.h"
#include "simulator/bytes.h"

namespace varkel::sim {

namespace {

// The module opens by itself when the unit starts.
constexpr std::string_view factoryRegistry =
    "# Values with which the registry begins; written by varkel-sim at every start.\n"
    "[GPRS\\OPENFLAG]\n"
    "m_GprsAutoOpenFlag = dword:1\n";

bool WriteFile(const std::string& path, std::string_view text) {
    const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    return file && WriteAll(file.Get(), text);
}

// FNV-1a: short, and different for different directories.
std::string PrefixFor(const std::string& directory) {
    std::uint32_t hash = 2166136261u;
    for (const char c : directory)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(hash >> shift);
    return "varkel-sim-" + HexFromBytes(bytes);
}

// Clients that are started elsewhere have another session, and find the unit's bus by its address.
std::string BusAddress() {
    const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    const bool usable = address && std::strchr(address, ':') && !std::strchr(address, '\n');
    return usable ? address : "session";
}

std::string UnitFile(const UnitPlace& place, const UnitParts& parts) {
    return "# The simulated unit; written by varkel-sim at every start.\n"
           "[unit]\n"
           "root = flash\n" +
           (parts.assets.empty() ? std::string() : "assets = " + parts.assets + "\n") +
           "registry = registry.db\n"
           "initial_registry = registry.txt\n"
           "object_prefix = " +
           place.objectPrefix +
           "\n"
           "bus = " +
           BusAddress() +
           "\n"
           "driver = bus\n" +
           (parts.dialProgram.empty()
                ? std::string()
                : "dial_up = \"" + parts.dialProgram + "\" \"" + place.directory + "\"\n") +
           "\n"
           "[serial]\n"
           "COM7: = " +
           place.tty + "\n" + (parts.modem == ModemKind::Unit ? "" : "\n[modem]\nprofile = auto\n");
}

}  // namespace

std::optional<UnitPlace> MakeUnitPlace(const std::string& directory, UnitParts parts, std::string& fault) {
    std::error_code error;
    const std::string absolute = std::filesystem::absolute(directory, error).lexically_normal().string();
    if (!parts.assets.empty())
        parts.assets = std::filesystem::absolute(parts.assets, error).lexically_normal().string();
    // What the unit file could not hold as a value, or between quotes.
    const bool bad = absolute.find_first_of("\n\"") != std::string::npos ||
                     parts.dialProgram.find_first_of("\n\"") != std::string::npos ||
                     parts.assets.find('\n') != std::string::npos;
    if (error || bad) {
        fault = "a directory of that name cannot be used";
        return std::nullopt;
    }
    UnitPlace place;
    place.directory = absolute;
    place.unitFile = absolute + "/unit.conf";
    place.tty = absolute + "/ttyModem";
    place.objectPrefix = PrefixFor(absolute);
    const bool there = MakePrivateDirectories(absolute + "/flash");
    place.lock.Reset(open((absolute + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (place.lock && flock(place.lock.Get(), LOCK_EX | LOCK_NB) != 0) {
        fault = "another simulator runs in " + absolute;
        return std::nullopt;
    }
    // A link that was left over would lead to some other terminal.
    const bool made = there && place.lock && WriteFile(absolute + "/registry.txt", factoryRegistry) &&
                      WriteFile(place.unitFile, UnitFile(place, parts)) &&
                      (unlink(place.tty.c_str()) == 0 || errno == ENOENT);
    if (!made) {
        fault = absolute + ": " + std::strerror(errno);
        return std::nullopt;
    }
    return place;
}

std::string DialProgramPath() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "" : (self.parent_path() / "varkel-sim-pppd").string();
}

std::string DefaultUnitDirectory() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/') return std::string(runtime) + "/varkel-sim";
    return "/tmp/varkel-sim-" + std::to_string(getuid());
}

}  // namespace varkel::sim
