#include "platform/linux/durable_file.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/file_descriptor.h"

namespace varkel {

namespace {

constexpr const char* reserveName = "reserve~";

FileDescriptor OpenIn(int directory, const std::string& name, int flags) {
    return FileDescriptor(Uninterrupted([&] {
        return openat(directory, name.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | flags, 0600);
    }));
}

// The size of a regular file; 0 when there is none.
off_t SizeIn(int directory, const std::string& name) {
    struct stat status {};
    if (fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return 0;
    return S_ISREG(status.st_mode) ? status.st_size : 0;
}

// Makes `bytes` all that the file holds, on the disk. The length is set last, so that bytes which go into
// space that the file has already need no other.
bool Fill(FileDescriptor file, std::string_view bytes) {
    if (!file || !WriteAll(file.Get(), bytes)) return false;
    if (ftruncate(file.Get(), static_cast<off_t>(bytes.size())) != 0 || fsync(file.Get()) != 0) return false;
    return close(file.Release()) == 0;
}

bool RenameIn(int directory, const std::string& from, const std::string& to) {
    return renameat(directory, from.c_str(), directory, to.c_str()) == 0;
}

// Makes the reserve hold `size` bytes, if there is room; a smaller one stays when there is none.
void KeepReserve(int directory, off_t size) {
    constexpr off_t step = 64 * 1024;
    const off_t wanted = std::max(step, (size + step - 1) / step * step);
    const FileDescriptor file = OpenIn(directory, reserveName, O_CREAT);
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0 || status.st_size >= wanted) return;
    if (posix_fallocate(file.Get(), 0, wanted) == 0) {
        fsync(file.Get());
        fsync(directory);
        return;
    }
    // What it got of the room goes back.
    [[maybe_unused]] const int returned = ftruncate(file.Get(), status.st_size);
}

}  // namespace

bool ReplaceDurably(int directory, const std::string& name, std::string_view bytes) {
    const auto size = static_cast<off_t>(bytes.size());
    const off_t reserve = SizeIn(directory, reserveName);
    const std::string prepared = name + ".new~";
    if (!Fill(OpenIn(directory, prepared, O_CREAT | O_TRUNC), bytes) ||
        !RenameIn(directory, prepared, name)) {
        unlinkat(directory, prepared.c_str(), 0);
        if (size > reserve || size > SizeIn(directory, name)) return false;
        if (!Fill(OpenIn(directory, reserveName, 0), bytes) || !RenameIn(directory, reserveName, name))
            return false;
    }
    const bool durable = fsync(directory) == 0;
    KeepReserve(directory, std::max(size, reserve));
    return durable;
}

}  // namespace varkel
