#include "platform/linux/directories.h"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace varkel {

bool MakePrivateDirectories(const std::string& path) {
    std::filesystem::path built;
    for (const auto& part : std::filesystem::path(path)) {
        built /= part;
        if (mkdir(built.c_str(), 0700) == 0 || errno == EEXIST) continue;
        // Directories that may not be written exist nevertheless.
        if (struct stat status{}; stat(built.c_str(), &status) != 0) return false;
    }
    std::error_code error;
    return path.empty() || std::filesystem::is_directory(built, error);
}

}  // namespace varkel
