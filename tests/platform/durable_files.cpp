// The program's own fsync and fdatasync stand before those of the C library, for SQLite too.
#include "tests/platform/durable_files.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace varkel::test {

namespace {

namespace fs = std::filesystem;

std::mutex mutex;
fs::path watched;
fs::path target;
std::map<ino_t, fs::path> mirrored;  // what a synced file is called in the mirror

ino_t Inode(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

// The directory's names as they are now, for the files that have been synced.
void MirrorNames() {
    std::map<ino_t, fs::path> present;
    for (const auto& entry : fs::directory_iterator(watched)) {
        const ino_t inode = Inode(entry);
        if (!mirrored.contains(inode)) continue;
        fs::rename(target / mirrored[inode], target / entry.path().filename());
        present[inode] = entry.path().filename();
    }
    mirrored = present;
    for (const auto& entry : fs::directory_iterator(target)) {
        if (!fs::exists(watched / entry.path().filename())) fs::remove(entry);
    }
}

void Mirror(int file) {
    std::lock_guard lock(mutex);
    std::error_code error;
    const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    if (watched.empty()) return;
    if (path == watched) MirrorNames();
    if (path.parent_path() != watched) return;
    const auto known = mirrored.try_emplace(Inode(path), path.filename()).first;
    fs::copy_file(path, target / known->second, fs::copy_options::overwrite_existing, error);
}

}  // namespace

DurableFiles::DurableFiles(const std::string& directory, const std::string& mirror) {
    std::lock_guard lock(mutex);
    watched = directory;
    target = mirror;
    mirrored.clear();
}

DurableFiles::~DurableFiles() {
    std::lock_guard lock(mutex);
    watched.clear();
}

}  // namespace varkel::test

extern "C" int fsync(int file) {
    varkel::test::Mirror(file);
    return static_cast<int>(syscall(SYS_fsync, file));
}

extern "C" int fdatasync(int file) {
    varkel::test::Mirror(file);
    return static_cast<int>(syscall(SYS_fdatasync, file));
}
