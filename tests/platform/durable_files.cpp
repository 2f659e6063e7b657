// The program's own fsync and fdatasync stand before those of the C library, for SQLite too.
#include "tests/platform/durable_files.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <mutex>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "tests/support/scratch.h"

namespace varkel::test {

namespace {

namespace fs = std::filesystem;

std::recursive_mutex mutex;
fs::path watched;
std::function<void()> onSync;
bool failing = false;
std::map<fs::path, std::string> synced;

// False when the sync is to fail.
bool Keep(int file) {
    std::lock_guard lock(mutex);
    if (watched.empty()) return true;
    if (failing) {
        errno = EIO;
        return false;
    }
    std::error_code error;
    const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    if (path.parent_path() != watched) return true;
    // What it does is not watched.
    if (const auto call = std::exchange(onSync, {})) {
        call();
        onSync = call;
    }
    synced[path.filename()] = FileContent(path);
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

DurableFiles::DurableFiles(const std::string& directory, std::function<void()> beforeSync) {
    std::lock_guard lock(mutex);
    watched = directory;
    synced.clear();
    onSync = std::move(beforeSync);
    failing = false;
}

DurableFiles::~DurableFiles() {
    std::lock_guard lock(mutex);
    watched.clear();
    onSync = {};
}

void DurableFiles::CutPower(const std::string& target, std::mt19937_64& random) {
    std::lock_guard lock(mutex);
    fs::remove_all(target);
    fs::create_directory(target);
    for (const auto& entry : fs::directory_iterator(watched)) {
        const fs::path name = entry.path().filename();
        WriteFile(target / name, Torn(synced[name], FileContent(entry.path()), random));
    }
}

void DurableFiles::FailSyncs(bool fail) {
    std::lock_guard lock(mutex);
    failing = fail;
}

}  // namespace varkel::test

extern "C" int fsync(int file) {
    return varkel::test::Keep(file) ? static_cast<int>(syscall(SYS_fsync, file)) : -1;
}

extern "C" int fdatasync(int file) {
    return varkel::test::Keep(file) ? static_cast<int>(syscall(SYS_fdatasync, file)) : -1;
}
