#include "platform/linux/unit_directory.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/directories.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr int directoryFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

Presence PresenceIn(int directory, const std::string& name) {
    struct stat status {};
    if (fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return Presence::There;
    return errno == ENOENT ? Presence::Missing : Presence::Unknown;
}

// Gives `name` the directory's own spelling when it has such an entry.
Presence FindSpelling(int directory, std::string& name) {
    if (const Presence exact = PresenceIn(directory, name); exact != Presence::Missing) return exact;
    const int copy = openat(directory, ".", directoryFlags);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(copy < 0 ? nullptr : fdopendir(copy), closedir);
    if (!entries) {
        const FileDescriptor unused(copy);
        return Presence::Unknown;
    }
    errno = 0;
    while (const dirent* const entry = readdir(entries.get())) {
        if (!EqualIgnoringCase(entry->d_name, name)) continue;
        name = entry->d_name;
        return Presence::There;
    }
    return errno == 0 ? Presence::Missing : Presence::Unknown;
}

// Makes the directory that is missing at the place.
void Make(PlacedFile& place) {
    if (mkdirat(place.directory.Get(), place.name.c_str(), 0700) != 0) return;
    fsync(place.directory.Get());
    place.presence = Presence::There;
}

// Goes into the directory at the place; what stands in there is not known yet.
void Enter(PlacedFile& place) {
    const bool exists = place.Exists();
    place.directory.Reset(exists ? openat(place.directory.Get(), place.name.c_str(), directoryFlags) : -1);
    if (exists) place.presence = Presence::Unknown;
}

}  // namespace

bool UnitDirectory::MakeRoot() const {
    return MakePrivateDirectories(m_root);
}

PlacedFile UnitDirectory::Place(const std::vector<std::string>& names, MissingVolume missing) const {
    PlacedFile place;
    if (names.empty()) return place;
    // The root itself may be a link: that is the integrator's choice.
    place.directory.Reset(open(m_root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!place.directory && errno == ENOENT) place.presence = Presence::Missing;
    for (std::size_t i = 0; place.directory; ++i) {
        place.name = names[i];
        place.presence = FindSpelling(place.directory.Get(), place.name);
        if (i + 1 == names.size()) break;
        if (place.presence == Presence::Missing && i == 0 && missing == MissingVolume::Make) Make(place);
        Enter(place);
    }
    if (place.presence == Presence::Unknown) place.directory.Reset();
    return place;
}

FileDescriptor UnitDirectory::Open(const PlacedFile& place, int flags) {
    return FileDescriptor(Uninterrupted([&] {
        return openat(place.directory.Get(), place.name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK,
                      0600);
    }));
}

}  // namespace varkel
