#include "platform/linux/linux_unit_files.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/device_path.h"

namespace varkel {

namespace {

class LinuxAppendFile final : public AppendFile {
  public:
    explicit LinuxAppendFile(FileDescriptor file) : m_file(std::move(file)) {}
    bool Append(std::string_view bytes) override { return WriteAll(m_file.Get(), bytes); }

  private:
    const FileDescriptor m_file;
};

// Writes, makes durable and closes; false when any of it failed.
bool WriteDurably(FileDescriptor file, std::string_view bytes) {
    if (!file || !WriteAll(file.Get(), bytes) || fsync(file.Get()) != 0) return false;
    return close(file.Release()) == 0;
}

}  // namespace

LinuxUnitFiles::LinuxUnitFiles(std::string root, std::string assets)
    : m_root(std::move(root)), m_assets(std::move(assets)) {
    // A root that cannot be made shows in every later call.
    [[maybe_unused]] const bool made = m_root.MakeRoot();
}

bool LinuxUnitFiles::CreateDirectory(std::string_view path) {
    const auto place = m_root.Place(SplitDevicePath(path), MissingVolume::Make);
    if (!place) return false;
    if (place->exists) return bool(UnitDirectory::Open(*place, O_RDONLY | O_DIRECTORY));
    if (mkdirat(place->directory.Get(), place->name.c_str(), 0700) != 0) return false;
    fsync(place->directory.Get());
    return true;
}

std::optional<PlacedFile> LinuxUnitFiles::Find(std::string_view path) const {
    const auto names = SplitDevicePath(path);
    for (const UnitDirectory* const tree : {&m_root, &m_assets}) {
        auto place = tree->Place(names, MissingVolume::Fail);
        if (place && place->exists) return place;
    }
    return std::nullopt;
}

bool LinuxUnitFiles::Exists(std::string_view path) {
    return Find(path).has_value();
}

std::optional<std::string> LinuxUnitFiles::ReadWhole(std::string_view path, std::size_t limit) {
    const auto place = Find(path);
    if (!place) return std::nullopt;
    const FileDescriptor file = UnitDirectory::Open(*place, O_RDONLY);
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return ReadAll(file.Get(), limit);
}

bool LinuxUnitFiles::WriteWhole(std::string_view path, std::string_view bytes) {
    std::lock_guard lock(m_writing);
    auto place = m_root.Place(SplitDevicePath(path), MissingVolume::Make);
    if (!place) return false;
    const int directory = place->directory.Get();
    const std::string name = std::exchange(place->name, place->name + ".new~");
    const std::string& prepared = place->name;
    const bool replaced = WriteDurably(UnitDirectory::Open(*place, O_WRONLY | O_CREAT | O_TRUNC), bytes) &&
                          renameat(directory, prepared.c_str(), directory, name.c_str()) == 0;
    if (!replaced) {
        unlinkat(directory, prepared.c_str(), 0);
        return false;
    }
    return fsync(directory) == 0;
}

std::unique_ptr<AppendFile> LinuxUnitFiles::StartFile(std::string_view path) {
    auto names = SplitDevicePath(path);
    for (std::size_t depth = 1; depth < names.size(); ++depth) {
        std::string directory;
        for (std::size_t i = 0; i < depth; ++i)
            directory += names[i] + "\\";
        if (!CreateDirectory(directory)) return nullptr;
    }
    const auto place = m_root.Place(names, MissingVolume::Make);
    if (!place) return nullptr;
    FileDescriptor file = UnitDirectory::Open(*place, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND);
    return file ? std::make_unique<LinuxAppendFile>(std::move(file)) : nullptr;
}

bool LinuxUnitFiles::Rename(std::string_view from, std::string_view to) {
    const auto source = m_root.Place(SplitDevicePath(from), MissingVolume::Fail);
    const auto target = m_root.Place(SplitDevicePath(to), MissingVolume::Fail);
    if (!source || !source->exists || !target) return false;
    return renameat(source->directory.Get(), source->name.c_str(), target->directory.Get(),
                    target->name.c_str()) == 0;
}

std::optional<std::uint64_t> LinuxUnitFiles::GetDiskFreeSpace(std::string_view volume) {
    auto names = SplitDevicePath(volume);
    if (names.empty()) return std::nullopt;
    // The place of anything in the volume is in the volume's directory.
    names.resize(1);
    names.emplace_back("x");
    const auto place = m_root.Place(names, MissingVolume::Make);
    struct statvfs status {};
    if (!place || fstatvfs(place->directory.Get(), &status) != 0) return std::nullopt;
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}

}  // namespace varkel
