// The program's own file calls stand before those of the C library, which they call.
#include "tests/stores/disk_double.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdarg>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace varkel::test {

namespace {

constexpr std::int64_t block = 4096;
constexpr std::int64_t unlimitedRoom = std::int64_t{1} << 40;

std::int64_t Blocks(std::int64_t bytes) {
    return (bytes + block - 1) / block * block;
}

// A file of the watched directory.
struct WatchedFile {
    int number = 0;
    std::int64_t taken = 0;
};

struct Disk {
    ino_t directoryInode = 0;
    DiskFault fault;
    int calls = 0;
    std::int64_t room = unlimitedRoom;
    std::map<ino_t, WatchedFile> files;
    int nextFile = 0;
    std::vector<DiskStep> steps;

    bool IsFaulty() const {
        return fault.first > 0 && (fault.forEver ? calls >= fault.first : calls == fault.first);
    }
    // Counts one call; true when it is to fail, with errno set.
    bool Fails() {
        ++calls;
        if (!IsFaulty() || fault.error == 0) return false;
        errno = fault.error;
        return true;
    }
    bool WritesHalf() const { return fault.error == 0 && IsFaulty(); }

    bool Knows(ino_t inode) const { return files.contains(inode); }
    void Add(ino_t inode, std::int64_t size) { files[inode] = {nextFile++, Blocks(size)}; }
    void Remove(ino_t inode) {
        room += files[inode].taken + block;
        files.erase(inode);
    }
    // Makes a file's content reach to `end`, as far as there is room; returns how far.
    std::int64_t Grow(ino_t inode, std::int64_t end) {
        std::int64_t& taken = files[inode].taken;
        const std::int64_t wanted = std::max<std::int64_t>(Blocks(end) - taken, 0);
        const std::int64_t given = std::min(wanted, std::max<std::int64_t>(room / block * block, 0));
        room -= given;
        taken += given;
        return std::min(end, taken);
    }
    void Resize(ino_t inode, std::int64_t size) {
        WatchedFile& file = files[inode];
        const std::int64_t kept = std::min(file.taken, Blocks(size));
        room += file.taken - kept;
        file.taken = kept;
        Note(inode, {.kind = DiskStep::Resize, .size = static_cast<std::size_t>(size)});
    }
    void Note(ino_t inode, DiskStep step) {
        step.file = files[inode].number;
        steps.push_back(std::move(step));
    }
};

std::unique_ptr<Disk> only;
thread_local Disk* disk = nullptr;

template <class Call>
Call* Real(const char* name) {
    void* const found = dlsym(RTLD_NEXT, name);
    assert(found);
    return reinterpret_cast<Call*>(found);
}

#define REAL(call) static auto* const real = Real<decltype(call)>(#call)

// 0 when there is no such file.
ino_t InodeOf(int directory, const char* name = "") {
    REAL(fstatat);
    struct stat status {};
    return real(directory, name, &status, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) == 0 ? status.st_ino : 0;
}

// What could not be written is not there, whoever did not look at the result.
void LoseContent(int file) {
    REAL(ftruncate);
    const int error = errno;
    // Fails on a file that was only read, as it should.
    [[maybe_unused]] const int lost = real(file, 0);
    errno = error;
}

}  // namespace

DiskDouble::DiskDouble(const std::string& directory) {
    assert(!only);
    only = std::make_unique<Disk>();
    only->directoryInode = InodeOf(AT_FDCWD, directory.c_str());
    const std::filesystem::directory_iterator all(directory);
    for (const auto& name : std::set<std::filesystem::path>(begin(all), end(all)))
        only->Add(InodeOf(AT_FDCWD, name.c_str()), static_cast<std::int64_t>(file_size(name)));
    disk = only.get();
}

DiskDouble::~DiskDouble() {
    disk = nullptr;
    only.reset();
}

void DiskDouble::Fail(DiskFault fault) {
    only->fault = fault;
    only->calls = 0;
}

int DiskDouble::Calls() const {
    return only->calls;
}

void DiskDouble::SetRoom(std::int64_t bytes) {
    only->room = bytes;
}

const std::vector<DiskStep>& DiskDouble::Steps() const {
    return only->steps;
}

}  // namespace varkel::test

using namespace varkel::test;

extern "C" int openat(int directory, const char* name, int flags, ...) {
    REAL(openat);
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (!disk) return real(directory, name, flags, mode);
    if (disk->Fails()) return -1;
    const bool creates =
        (flags & O_CREAT) != 0 && InodeOf(directory) == disk->directoryInode && InodeOf(directory, name) == 0;
    if (creates && disk->room < block) {
        errno = ENOSPC;
        return -1;
    }
    const int file = real(directory, name, flags, mode);
    if (file < 0) return file;
    const ino_t inode = InodeOf(file);
    if (creates) {
        disk->room -= block;
        disk->Add(inode, 0);
        disk->Note(inode, {.kind = DiskStep::Create, .name = name});
    } else if ((flags & O_TRUNC) != 0 && disk->Knows(inode)) {
        disk->Resize(inode, 0);
    }
    return file;
}

extern "C" int open(const char* name, int flags, ...) {
    REAL(open);
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (disk && disk->Fails()) return -1;
    return real(name, flags, mode);
}

extern "C" ssize_t read(int file, void* bytes, std::size_t size) {
    REAL(read);
    if (disk && disk->Fails()) return -1;
    return real(file, bytes, size);
}

extern "C" ssize_t write(int file, const void* bytes, std::size_t size) {
    REAL(write);
    if (!disk) return real(file, bytes, size);
    if (disk->Fails()) return -1;
    if (disk->WritesHalf()) size = (size + 1) / 2;
    const ino_t inode = InodeOf(file);
    if (!disk->Knows(inode)) return real(file, bytes, size);
    const off_t offset = lseek(file, 0, SEEK_CUR);
    const std::int64_t end = disk->Grow(inode, offset + static_cast<std::int64_t>(size));
    if (size > 0 && end <= offset) {
        errno = ENOSPC;
        return -1;
    }
    const ssize_t count = real(file, bytes, static_cast<std::size_t>(end - offset));
    if (count > 0)
        disk->Note(inode, {.kind = DiskStep::Write,
                           .offset = static_cast<std::size_t>(offset),
                           .bytes = {static_cast<const char*>(bytes), static_cast<std::size_t>(count)}});
    return count;
}

extern "C" int ftruncate(int file, off_t size) noexcept {
    REAL(ftruncate);
    if (!disk) return real(file, size);
    if (disk->Fails()) return -1;
    if (const ino_t inode = InodeOf(file); disk->Knows(inode)) disk->Resize(inode, size);
    return real(file, size);
}

extern "C" int posix_fallocate(int file, off_t offset, off_t size) {
    REAL(posix_fallocate);
    if (!disk) return real(file, offset, size);
    if (disk->Fails()) return errno;
    if (const ino_t inode = InodeOf(file); disk->Knows(inode)) {
        if (disk->Grow(inode, offset + size) < offset + size) return ENOSPC;
        disk->Note(inode, {.kind = DiskStep::Allocate, .size = static_cast<std::size_t>(offset + size)});
    }
    return real(file, offset, size);
}

extern "C" int fsync(int file) {
    REAL(fsync);
    if (!disk) return real(file);
    if (disk->Fails()) return LoseContent(file), -1;
    const ino_t inode = InodeOf(file);
    if (inode == disk->directoryInode) disk->steps.push_back({.kind = DiskStep::SyncDirectory});
    if (disk->Knows(inode)) disk->Note(inode, {.kind = DiskStep::SyncFile});
    return 0;
}

extern "C" int close(int file) {
    REAL(close);
    if (!disk || !disk->Fails()) return real(file);
    LoseContent(file);
    const int error = errno;
    real(file);
    errno = error;
    return -1;
}

extern "C" int renameat(int from, const char* name, int to, const char* newName) noexcept {
    REAL(renameat);
    if (!disk) return real(from, name, to, newName);
    if (disk->Fails()) return -1;
    const ino_t moved = InodeOf(from, name);
    const ino_t replaced = InodeOf(to, newName);
    const int result = real(from, name, to, newName);
    if (result != 0 || !disk->Knows(moved)) return result;
    if (replaced != 0 && replaced != moved) disk->Remove(replaced);
    disk->Note(moved, {.kind = DiskStep::Rename, .name = name, .newName = newName});
    return 0;
}

extern "C" int unlinkat(int directory, const char* name, int flags) noexcept {
    REAL(unlinkat);
    if (!disk) return real(directory, name, flags);
    if (disk->Fails()) return -1;
    const ino_t inode = InodeOf(directory, name);
    const int result = real(directory, name, flags);
    if (result != 0 || !disk->Knows(inode)) return result;
    disk->Note(inode, {.kind = DiskStep::Unlink, .name = name});
    disk->Remove(inode);
    return 0;
}

extern "C" int mkdirat(int directory, const char* name, mode_t mode) noexcept {
    REAL(mkdirat);
    if (disk && disk->Fails()) return -1;
    return real(directory, name, mode);
}

extern "C" int fstat(int file, struct stat* status) noexcept {
    REAL(fstat);
    if (disk && disk->Fails()) return -1;
    return real(file, status);
}

extern "C" int fstatat(int directory, const char* name, struct stat* status, int flags) noexcept {
    REAL(fstatat);
    if (disk && disk->Fails()) return -1;
    return real(directory, name, status, flags);
}

extern "C" dirent* readdir(DIR* entries) {
    REAL(readdir);
    if (disk && disk->Fails()) return nullptr;
    return real(entries);
}

extern "C" int fstatvfs(int file, struct statvfs* status) noexcept {
    REAL(fstatvfs);
    if (!disk) return real(file, status);
    if (disk->Fails()) return -1;
    const int result = real(file, status);
    if (disk->room < unlimitedRoom)
        status->f_bavail = static_cast<fsblkcnt_t>(std::max<std::int64_t>(disk->room, 0)) / status->f_frsize;
    return result;
}
