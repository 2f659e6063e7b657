#include "platform/linux/linux_unit_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/device_path.h"
#include "platform/linux/durable_file.h"

namespace varkel {

namespace {

class LinuxAppendFile final : public AppendFile {
  public:
    explicit LinuxAppendFile(FileDescriptor file) : m_file(std::move(file)) {}
    bool Append(std::string_view bytes) override { return WriteAll(m_file.Get(), bytes); }

  private:
    const FileDescriptor m_file;
};

}  // namespace

LinuxUnitFiles::LinuxUnitFiles(std::string root, std::string assets, std::string skin)
    : m_root(std::move(root)) {
    if (!skin.empty()) m_installed.emplace_back(std::move(skin));
    m_installed.emplace_back(std::move(assets));
    // A root that cannot be made shows in every later call.
    [[maybe_unused]] const bool made = m_root.MakeRoot();
}

bool LinuxUnitFiles::CreateDirectory(std::string_view path) {
    const PlacedFile place = m_root.Place(SplitDevicePath(path), MissingVolume::Make);
    if (!place) return false;
    if (place.Exists()) return bool(UnitDirectory::Open(place, O_RDONLY | O_DIRECTORY));
    if (mkdirat(place.directory.Get(), place.name.c_str(), 0700) != 0) return false;
    fsync(place.directory.Get());
    return true;
}

PlacedFile LinuxUnitFiles::Find(std::string_view path) const {
    const auto names = SplitDevicePath(path);
    PlacedFile place = m_root.Place(names, MissingVolume::Fail);
    // The next one may be read only when there is certainly no such file in this one.
    for (const UnitDirectory& directory : m_installed) {
        if (place.presence != Presence::Missing) break;
        place = directory.Place(names, MissingVolume::Fail);
    }
    return place;
}

bool LinuxUnitFiles::Exists(std::string_view path) {
    return Find(path).Exists();
}

FileRead LinuxUnitFiles::Read(std::string_view path, std::size_t limit, std::string& bytes) {
    bytes.clear();
    const PlacedFile place = Find(path);
    if (!place.Exists()) return place.presence == Presence::Missing ? FileRead::Missing : FileRead::Failed;
    const FileDescriptor file = UnitDirectory::Open(place, O_RDONLY);
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return FileRead::Failed;
    if (static_cast<std::uint64_t>(status.st_size) > limit) return FileRead::TooLarge;
    auto content = ReadAll(file.Get(), limit);
    if (!content) return FileRead::Failed;
    bytes = std::move(*content);
    return FileRead::Whole;
}

bool LinuxUnitFiles::WriteWhole(std::string_view path, std::string_view bytes) {
    std::lock_guard lock(m_writing);
    const PlacedFile place = m_root.Place(SplitDevicePath(path), MissingVolume::Make);
    return place && ReplaceDurably(place.directory.Get(), place.name, bytes);
}

std::unique_ptr<AppendFile> LinuxUnitFiles::StartFile(std::string_view path) {
    auto names = SplitDevicePath(path);
    for (std::size_t depth = 1; depth < names.size(); ++depth) {
        std::string directory;
        for (std::size_t i = 0; i < depth; ++i)
            directory += names[i] + "\\";
        if (!CreateDirectory(directory)) return nullptr;
    }
    const PlacedFile place = m_root.Place(names, MissingVolume::Make);
    if (!place) return nullptr;
    FileDescriptor file = UnitDirectory::Open(place, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND);
    return file ? std::make_unique<LinuxAppendFile>(std::move(file)) : nullptr;
}

bool LinuxUnitFiles::Rename(std::string_view from, std::string_view to) {
    const PlacedFile source = m_root.Place(SplitDevicePath(from), MissingVolume::Fail);
    const PlacedFile target = m_root.Place(SplitDevicePath(to), MissingVolume::Fail);
    if (!source.Exists() || !target) return false;
    return renameat(source.directory.Get(), source.name.c_str(), target.directory.Get(),
                    target.name.c_str()) == 0;
}

std::optional<std::uint64_t> LinuxUnitFiles::GetDiskFreeSpace(std::string_view volume) {
    auto names = SplitDevicePath(volume);
    if (names.empty()) return std::nullopt;
    // The place of anything in the volume is in the volume's directory.
    names.resize(1);
    names.emplace_back("x");
    const PlacedFile place = m_root.Place(names, MissingVolume::Make);
    struct statvfs status {};
    if (!place || fstatvfs(place.directory.Get(), &status) != 0) return std::nullopt;
    // What the file system keeps for root is no free space.
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}

}  // namespace varkel
