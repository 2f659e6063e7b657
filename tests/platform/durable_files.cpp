// The program's own fsync and fdatasync stand before those of the C library, for SQLite too.
#include "tests/platform/durable_files.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "tests/support/scratch.h"

namespace varkel::test {

namespace {

namespace fs = std::filesystem;

std::recursive_mutex mutex;
fs::path watched;
fs::path target;
std::function<void()> onSync;
bool failing = false;
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

// False when the sync is to fail.
bool Mirror(int file) {
    std::lock_guard lock(mutex);
    std::error_code error;
    const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    if (watched.empty()) return true;
    if (failing) {
        errno = EIO;
        return false;
    }
    if (path == watched) MirrorNames();
    if (path.parent_path() != watched) return true;
    // What it does is not watched.
    if (const auto call = std::exchange(onSync, {})) {
        call();
        onSync = call;
    }
    const auto known = mirrored.try_emplace(Inode(path), path.filename()).first;
    fs::copy_file(path, target / known->second, fs::copy_options::overwrite_existing, error);
    return true;
}

// Each sector as it was or as it is now; the length as well.
std::string Torn(const std::string& before, const std::string& now, std::mt19937_64& random) {
    constexpr std::size_t sector = 512;
    std::string torn = before;
    torn.resize(random() % 2 == 0 ? before.size() : now.size());
    for (std::size_t at = 0; at < std::min(torn.size(), now.size()); at += sector) {
        if (random() % 2 == 0) torn.replace(at, sector, now, at, std::min(sector, torn.size() - at));
    }
    return torn;
}

}  // namespace

DurableFiles::DurableFiles(const std::string& directory, const std::string& mirror,
                           std::function<void()> beforeSync) {
    std::lock_guard lock(mutex);
    watched = directory;
    target = mirror;
    mirrored.clear();
    onSync = std::move(beforeSync);
    failing = false;
}

DurableFiles::~DurableFiles() {
    std::lock_guard lock(mutex);
    watched.clear();
    onSync = {};
}

void DurableFiles::CutPower(const std::string& left, std::mt19937_64& random) {
    std::lock_guard lock(mutex);
    fs::remove_all(left);
    fs::create_directory(left);
    for (const auto& entry : fs::directory_iterator(watched)) {
        const fs::path name = entry.path().filename();
        const std::string before = fs::exists(target / name) ? FileContent(target / name) : "";
        WriteFile(fs::path(left) / name, Torn(before, FileContent(entry.path()), random));
    }
}

void DurableFiles::FailSyncs(bool fail) {
    std::lock_guard lock(mutex);
    failing = fail;
}

}  // namespace varkel::test

extern "C" int fsync(int file) {
    return varkel::test::Mirror(file) ? static_cast<int>(syscall(SYS_fsync, file)) : -1;
}

extern "C" int fdatasync(int file) {
    return varkel::test::Mirror(file) ? static_cast<int>(syscall(SYS_fdatasync, file)) : -1;
}
