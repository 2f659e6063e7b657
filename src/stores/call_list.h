// The lists of dialled, received and missed calls.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "stores/call_record.h"
#include "stores/record_file.h"

namespace varkel {

enum class CallKind { Dialled, Received, Missed };

// One list and its file, which grows by a record a call until the user deletes some. As with the message
// boxes there is one object for each list, a screen's list is a copy, and any thread may call; a change takes
// as long as the flash needs.
class CallList {
  public:
    using List = std::vector<CallRecord>;

    CallList(UnitFiles& files, Log& log, CallKind kind);

    // All records, the oldest first; AtRow() is the order of the screens. None when the file cannot be read.
    List FindCallRecord() { return m_file.Load(); }

    // Adds the newest one. Needs 1 MiB of free space, or is VolumeFull. Calls with the same number are
    // records of their own.
    [[nodiscard]] StoreResult WriteCallRecord(const CallRecord& record) {
        return m_file.Append(record, SpaceGuard::On);
    }

    // Row 0 of the list `shown` is its newest record. These work on a full volume.
    [[nodiscard]] StoreResult Delete(std::span<const CallRecord> shown, std::size_t row) {
        return m_file.Delete(shown, row);
    }
    // All that were shown, and none that came since.
    [[nodiscard]] StoreResult DeleteShown(std::span<const CallRecord> shown) {
        return m_file.DeleteShown(shown);
    }
    [[nodiscard]] StoreResult DeleteAll() { return m_file.DeleteAll(); }

    // In the unit's text code page; empty when there is no record.
    std::string NewestNumber();

  private:
    RecordFile<CallRecord> m_file;
};

struct CallLists {
    CallLists(UnitFiles& files, Log& log)
        : dialled(files, log, CallKind::Dialled),
          received(files, log, CallKind::Received),
          missed(files, log, CallKind::Missed) {}

    CallList& Of(CallKind kind) {
        switch (kind) {
            case CallKind::Dialled: return dialled;
            case CallKind::Received: return received;
            case CallKind::Missed: break;
        }
        return missed;
    }

    CallList dialled;
    CallList received;
    CallList missed;
};

}  // namespace varkel
