#include "platform/linux/unit_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

#include "platform/linux/directories.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr int directoryFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool ExistsIn(int directory, const std::string& name) {
    struct stat status {};
    return fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

// The directory's own spelling of `name`; nothing when it has no such entry.
std::optional<std::string> Spelling(int directory, const std::string& name) {
    if (ExistsIn(directory, name)) return name;
    const int copy = openat(directory, ".", directoryFlags);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(copy < 0 ? nullptr : fdopendir(copy), closedir);
    if (!entries) {
        const FileDescriptor unused(copy);
        return std::nullopt;
    }
    while (const dirent* const entry = readdir(entries.get())) {
        if (EqualIgnoringCase(entry->d_name, name)) return entry->d_name;
    }
    return std::nullopt;
}

}  // namespace

bool UnitDirectory::MakeRoot() const {
    return MakePrivateDirectories(m_root);
}

std::optional<PlacedFile> UnitDirectory::Place(const std::vector<std::string>& names,
                                               MissingVolume missing) const {
    if (names.empty()) return std::nullopt;
    // The root itself may be a link: that is the integrator's choice.
    FileDescriptor directory(open(m_root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (std::size_t i = 0; i + 1 < names.size() && directory; ++i) {
        auto name = Spelling(directory.Get(), names[i]);
        if (!name && i == 0 && missing == MissingVolume::Make &&
            mkdirat(directory.Get(), names[0].c_str(), 0700) == 0)
            name = names[0];
        directory.Reset(name ? openat(directory.Get(), name->c_str(), directoryFlags) : -1);
    }
    if (!directory) return std::nullopt;
    const auto spelling = Spelling(directory.Get(), names.back());
    return PlacedFile{std::move(directory), spelling.value_or(names.back()), spelling.has_value()};
}

FileDescriptor UnitDirectory::Open(const PlacedFile& place, int flags) {
    return FileDescriptor(Uninterrupted([&] {
        return openat(place.directory.Get(), place.name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK,
                      0600);
    }));
}

}  // namespace varkel
