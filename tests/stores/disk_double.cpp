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
#include <utility>

namespace varkel::test {

namespace {

constexpr std::int64_t block = 4096;
constexpr std::int64_t unlimitedRoom = std::int64_t{1} << 40;

std::int64_t Blocks(std::int64_t bytes) {
    return (bytes + block - 1) / block * block;
}

struct Disk {
    std::string directory;
    ino_t directoryInode = 0;
    DiskFault fault;
    int calls = 0;
    std::int64_t room = unlimitedRoom;
    std::map<ino_t, int> files;
    std::map<ino_t, std::int64_t> taken;
    int nextFile = 0;
    std::vector<DiskStep> steps;

    // Counts one call; true when it is to fail, with errno set.
    bool Fails() {
        ++calls;
        const bool chosen =
            fault.first > 0 && (calls == fault.first || (fault.forEver && calls > fault.first));
        if (!chosen || fault.error == 0) return false;
        errno = fault.error;
        return true;
    }
    bool WritesHalf() const {
        return fault.error == 0 && fault.first > 0 && calls >= fault.first &&
               (fault.forEver || calls == fault.first);
    }

    // Whether this is a file of the watched directory.
    bool Knows(ino_t inode) const { return files.contains(inode); }
    void Add(ino_t inode, std::int64_t size) {
        files[inode] = nextFile++;
        taken[inode] = Blocks(size);
    }
    void Remove(ino_t inode) {
        room += taken[inode] + block;
        taken.erase(inode);
        files.erase(inode);
    }
    // Makes a file's content reach to `end`, as far as there is room; returns how far.
    std::int64_t Grow(ino_t inode, std::int64_t end) {
        const std::int64_t wanted = std::max<std::int64_t>(Blocks(end) - taken[inode], 0);
        const std::int64_t given = std::min(wanted, std::max<std::int64_t>(room / block * block, 0));
        room -= given;
        taken[inode] += given;
        return std::min(end, taken[inode]);
    }
    void Shrink(ino_t inode, std::int64_t size) {
        const std::int64_t kept = std::min(taken[inode], Blocks(size));
        room += taken[inode] - kept;
        taken[inode] = kept;
    }
};

thread_local Disk* disk = nullptr;

ino_t InodeOf(int file) {
    Disk* const watching = std::exchange(disk, nullptr);
    struct stat status {};
    const ino_t inode = fstat(file, &status) == 0 ? status.st_ino : 0;
    disk = watching;
    return inode;
}

ino_t InodeIn(int directory, const char* name) {
    Disk* const watching = std::exchange(disk, nullptr);
    struct stat status {};
    const int found = fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW);
    disk = watching;
    return found == 0 ? status.st_ino : 0;
}

bool IsWatched(int directory) {
    return InodeOf(directory) == disk->directoryInode;
}

// What could not be written is not there, whoever did not look at the result.
void LoseContent(int file) {
    const int error = errno;
    Disk* const watching = std::exchange(disk, nullptr);
    // Fails on a file that was only read, as it should.
    [[maybe_unused]] const int lost = ftruncate(file, 0);
    disk = watching;
    errno = error;
}

template <class Call>
Call* Real(const char* name) {
    void* const found = dlsym(RTLD_NEXT, name);
    assert(found);
    return reinterpret_cast<Call*>(found);
}

std::unique_ptr<Disk> only;

}  // namespace

DiskDouble::DiskDouble(const std::string& directory) {
    assert(!only);
    only = std::make_unique<Disk>();
    only->directory = directory;
    struct stat status {};
    if (stat(directory.c_str(), &status) == 0) only->directoryInode = status.st_ino;
    std::set<std::filesystem::path> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.insert(entry.path());
    for (const auto& name : names) {
        if (stat(name.c_str(), &status) == 0) only->Add(status.st_ino, status.st_size);
    }
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

using varkel::test::block;
using varkel::test::disk;
using varkel::test::DiskStep;
using varkel::test::InodeIn;
using varkel::test::InodeOf;
using varkel::test::IsWatched;
using varkel::test::LoseContent;
using varkel::test::Real;

#define REAL(call) static auto* const real = Real<decltype(call)>(#call)

extern "C" int openat(int directory, const char* name, int flags, ...) {
    REAL(openat);
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (!disk) return real(directory, name, flags, mode);
    if (disk->Fails()) return -1;
    const bool creates = (flags & O_CREAT) != 0 && IsWatched(directory) && InodeIn(directory, name) == 0;
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
        disk->steps.push_back({.kind = DiskStep::Create, .file = disk->files[inode], .name = name});
    } else if ((flags & O_TRUNC) != 0 && disk->Knows(inode)) {
        disk->Shrink(inode, 0);
        disk->steps.push_back({.kind = DiskStep::Resize, .file = disk->files[inode], .size = 0});
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
    if (count > 0) {
        disk->steps.push_back(
            {.kind = DiskStep::Write,
             .file = disk->files[inode],
             .offset = static_cast<std::size_t>(offset),
             .bytes = std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(count))});
    }
    return count;
}

extern "C" int ftruncate(int file, off_t size) noexcept {
    REAL(ftruncate);
    if (!disk) return real(file, size);
    if (disk->Fails()) return -1;
    const ino_t inode = InodeOf(file);
    if (disk->Knows(inode)) {
        disk->Shrink(inode, size);
        disk->steps.push_back(
            {.kind = DiskStep::Resize, .file = disk->files[inode], .size = static_cast<std::size_t>(size)});
    }
    return real(file, size);
}

extern "C" int posix_fallocate(int file, off_t offset, off_t size) {
    REAL(posix_fallocate);
    if (!disk) return real(file, offset, size);
    if (disk->Fails()) return errno;
    const ino_t inode = InodeOf(file);
    if (disk->Knows(inode)) {
        if (disk->Grow(inode, offset + size) < offset + size) return ENOSPC;
        disk->steps.push_back({.kind = DiskStep::Allocate,
                               .file = disk->files[inode],
                               .size = static_cast<std::size_t>(offset + size)});
    }
    return real(file, offset, size);
}

extern "C" int fsync(int file) {
    REAL(fsync);
    if (!disk) return real(file);
    if (disk->Fails()) return LoseContent(file), -1;
    const ino_t inode = InodeOf(file);
    if (inode == disk->directoryInode) disk->steps.push_back({.kind = DiskStep::SyncDirectory});
    if (disk->Knows(inode)) disk->steps.push_back({.kind = DiskStep::SyncFile, .file = disk->files[inode]});
    return 0;
}

extern "C" int close(int file) {
    REAL(close);
    if (!disk) return real(file);
    const bool fails = disk->Fails();
    if (fails) LoseContent(file);
    const int error = errno;
    const int result = real(file);
    if (!fails) return result;
    errno = error;
    return -1;
}

extern "C" int renameat(int from, const char* name, int to, const char* newName) noexcept {
    REAL(renameat);
    if (!disk) return real(from, name, to, newName);
    if (disk->Fails()) return -1;
    const ino_t moved = InodeIn(from, name);
    const ino_t replaced = InodeIn(to, newName);
    const int result = real(from, name, to, newName);
    if (result != 0 || !disk->Knows(moved)) return result;
    if (replaced != 0 && replaced != moved) disk->Remove(replaced);
    disk->steps.push_back(
        {.kind = DiskStep::Rename, .file = disk->files[moved], .name = name, .newName = newName});
    return 0;
}

extern "C" int unlinkat(int directory, const char* name, int flags) noexcept {
    REAL(unlinkat);
    if (!disk) return real(directory, name, flags);
    if (disk->Fails()) return -1;
    const ino_t inode = InodeIn(directory, name);
    const int result = real(directory, name, flags);
    if (result != 0 || !disk->Knows(inode)) return result;
    disk->steps.push_back({.kind = DiskStep::Unlink, .file = disk->files[inode], .name = name});
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
    if (disk->room < varkel::test::unlimitedRoom)
        status->f_bavail = static_cast<fsblkcnt_t>(std::max<std::int64_t>(disk->room, 0)) / status->f_frsize;
    return result;
}
