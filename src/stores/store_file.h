// A file of records of one size, as bytes: no header, no count, the oldest record first.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/log.h"
#include "platform/unit_files.h"

namespace varkel {

enum class StoreResult {
    Done,
    NotFound,     // the record that was meant is not in the file any more
    VolumeFull,   // less than 1 MiB is free, or no more records fit: the caller shows "IDS_NAND_FULL"
    Unreadable,   // the file may be there but cannot be read, so it is not written over
    WriteFailed,  // the user is not told, the log is
};

// Whether a change asks for 1 MiB of free space first. What adds records asks; what deletes or marks them
// must work on a full volume.
enum class SpaceGuard { Off, On };

struct StorePlace {
    std::string_view path;
    // The unit's own copy, never written: a missing file is made from it first. Empty: there is none.
    std::string_view factoryPath{};
    // A change removes the oldest records beyond this many.
    std::size_t capacity = std::numeric_limits<std::size_t>::max();
};

// One object owns one file, and each change is one operation under its lock: load, change, write back. Any
// thread may call; a change takes as long as the flash needs, but nobody who loads waits for it, because a
// file is replaced in one step.
//
// A tail that is no whole record is left out, and is gone after the next change. A file of more than
// `largestFile` bytes is none of ours: it loads as empty, and the first change sets it aside as "<path>.old".
// No change makes a file that large.
class StoreFile {
  public:
    StoreFile(UnitFiles& files, Log& log, const StorePlace& place, std::size_t recordBytes);

    // The whole records of the file; none when it is missing or cannot be read.
    std::string Load();

    // Hands the records to `change`, which may do anything to them but call this object, and writes them back
    // when it answers Done and they differ from the file. Any other answer is the result.
    using Change = std::function<StoreResult(std::string& records)>;
    [[nodiscard]] StoreResult Update(SpaceGuard guard, const Change& change);

    static constexpr std::size_t largestFile = 16 << 20;

  private:
    StoreResult UpdateLocked(SpaceGuard guard, const Change& change);
    FileRead Read(std::string& bytes);
    bool HasRoom() const;
    bool SetAside();
    bool Write(std::string_view bytes);
    void KeepWholeRecords(std::string& bytes) const;
    void KeepNewest(std::string& bytes) const;
    void LogFailure(const char* what);

    UnitFiles& m_files;
    Log& m_log;
    const std::string m_path;
    const std::string m_factoryPath;
    const std::size_t m_recordBytes;
    const std::size_t m_capacity;
    std::mutex m_mutex;
};

}  // namespace varkel
