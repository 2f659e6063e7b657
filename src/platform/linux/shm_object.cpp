#include "platform/linux/shm_object.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/linux/file_descriptor.h"

namespace varkel {

namespace {

const std::string directory = "/dev/shm/";

std::span<std::byte> Map(int file, std::size_t bytes) {
    void* const memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) return {};
    return {static_cast<std::byte*>(memory), bytes};
}

// Whether the file is one that this program, run by the same user, could have made.
bool Trusted(int file, std::size_t bytes) {
    struct stat status {};
    if (fstat(file, &status) != 0) return false;
    errno = EACCES;
    if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || (status.st_mode & 077) != 0) return false;
    errno = EINVAL;
    return status.st_size >= 0 && static_cast<std::size_t>(status.st_size) >= bytes;
}

// A file without a name until it is complete: nobody sees half an object, and a program that dies here leaves
// nothing behind. False when it cannot be made; that another program has just made it is no failure.
bool Make(const std::string& path, std::size_t bytes,
          const std::function<void(std::span<std::byte>)>& initialise) {
    const FileDescriptor file(open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    // Memory is claimed now: a full one would otherwise kill whoever writes to the object first.
    if (!file || fchmod(file.Get(), 0600) != 0) return false;
    if (const int error = posix_fallocate(file.Get(), 0, static_cast<off_t>(bytes)); error != 0) {
        errno = error;
        return false;
    }
    const auto view = Map(file.Get(), bytes);
    if (view.empty()) return false;
    initialise(view);
    munmap(view.data(), view.size());
    const std::string self = "/proc/self/fd/" + std::to_string(file.Get());
    return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0 || errno == EEXIST;
}

}  // namespace

std::unique_ptr<ShmObject> ShmObject::Open(const std::string& name, std::size_t bytes,
                                           const std::function<void(std::span<std::byte>)>& initialise) {
    const std::string path = directory + name;
    const auto openIt = [&] { return FileDescriptor(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW)); };
    FileDescriptor file = openIt();
    if (!file && errno == ENOENT && Make(path, bytes, initialise)) file = openIt();
    if (!file || !Trusted(file.Get(), bytes)) return nullptr;
    const auto view = Map(file.Get(), bytes);
    if (view.empty()) return nullptr;
    return std::unique_ptr<ShmObject>(new ShmObject(view));
}

ShmObject::~ShmObject() {
    munmap(m_bytes.data(), m_bytes.size());
}

void ShmObject::RemoveAll(const std::string& prefix) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        if (entry.path().filename().string().starts_with(prefix + ".")) std::filesystem::remove(entry, error);
    }
}

}  // namespace varkel
