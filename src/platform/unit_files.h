// The unit's flash: files named by device paths, kept whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace varkel {

// A file that only grows, such as the log. Not locked.
class AppendFile {
  public:
    virtual ~AppendFile() = default;
    // True when all of it was handed to the system.
    virtual bool Append(std::string_view bytes) = 0;
};

enum class FileRead {
    Whole,
    Missing,   // there is certainly no such file
    TooLarge,  // it has more bytes than the caller takes
    Failed,    // it may be there, but it cannot be read now
};

// Device paths look like "NandFlash\System\Phone" or "\ResidentFlash2\bin\msg.wav": parted by backslashes, in
// any case, with or without a leading one. None of them leads out of the unit. Any thread.
class UnitFiles {
  public:
    virtual ~UnitFiles() = default;

    // CreateDirectory: makes the last part of the path; true when the directory exists afterwards.
    virtual bool CreateDirectory(std::string_view path) = 0;
    virtual bool Exists(std::string_view path) = 0;

    // Puts the whole file, of at most `limit` bytes, into `bytes`; these stay empty unless the result is
    // Whole.
    virtual FileRead Read(std::string_view path, std::size_t limit, std::string& bytes) = 0;
    // The same for whom any reason is as good as another: nothing when the file was not read.
    std::optional<std::string> ReadWhole(std::string_view path, std::size_t limit) {
        std::string bytes;
        if (Read(path, limit, bytes) != FileRead::Whole) return std::nullopt;
        return bytes;
    }
    // Replaces the file in one step: after a power cut at any moment it holds the old bytes or the new.
    // False, and the old file is untouched, when something failed. Bytes that are no longer than the old ones
    // need no free space: a reserve that is set aside beside the file takes them.
    virtual bool WriteWhole(std::string_view path, std::string_view bytes) = 0;

    // Starts the file anew, empty, in its directory, which is made when it is missing. Null when that fails.
    virtual std::unique_ptr<AppendFile> StartFile(std::string_view path) = 0;
    virtual bool Rename(std::string_view from, std::string_view to) = 0;

    // GetDiskFreeSpaceEx: the total free bytes of a volume such as "NandFlash".
    virtual std::optional<std::uint64_t> GetDiskFreeSpace(std::string_view volume) = 0;
};

}  // namespace varkel
