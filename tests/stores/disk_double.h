// The system's file calls, on their way to the disk: failing at will, on a full volume, and written down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace varkel::test {

// One change of the watched directory or of a file in it.
struct DiskStep {
    enum Kind { Create, Write, Resize, Allocate, SyncFile, Rename, Unlink, SyncDirectory };
    Kind kind = Create;
    int file = 0;  // the file itself, whatever it is called
    std::string name{};
    std::string newName{};
    std::size_t offset = 0;  // of a Write
    std::size_t size = 0;    // of a Resize or Allocate
    std::string bytes{};     // of a Write
};

// Which of the calls fail, counted from 1.
struct DiskFault {
    int first = 0;
    bool forEver = false;
    int error = 0;  // errno; 0: a write takes only half of its bytes, nothing else fails
};

// While it lives, the file calls of the thread that made it pass through here. Nothing is really synced,
// which no test could see and every test would wait for. One at a time.
class DiskDouble {
  public:
    // The files that stand in `directory` are the steps' files 0, 1, 2, ..., in the order of their names.
    explicit DiskDouble(const std::string& directory);
    ~DiskDouble();
    DiskDouble(const DiskDouble&) = delete;
    DiskDouble& operator=(const DiskDouble&) = delete;

    void Fail(DiskFault fault);
    // How many calls there were since Fail().
    int Calls() const;
    // The volume has this much room; a file takes 4 KiB and what its content needs in blocks of 4 KiB.
    void SetRoom(std::int64_t bytes);
    const std::vector<DiskStep>& Steps() const;
};

}  // namespace varkel::test
