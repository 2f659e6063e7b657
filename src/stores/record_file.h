// A file of records of one type. The classes of calls, messages, phonebook and operators stand on it.
#pragma once

#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "stores/store_file.h"

namespace varkel {

// The record in row `row` of a screen, which shows the newest first; null when there is no such row.
template <class List>
const auto* AtRow(const List& list, std::size_t row) {
    return row < list.size() ? list.data() + (list.size() - 1 - row) : nullptr;
}

struct SameBytes {
    template <class Record>
    bool operator()(const Record& a, const Record& b) const {
        return std::memcmp(&a, &b, sizeof(Record)) == 0;
    }
};

// Where `seen`, which stood at `position` when it was seen, stands now; null when it is gone. Deletions and
// the trim have only moved records towards the front since, so it is looked for from there to the front, and
// then behind. Of several that look alike the first one found is taken: nobody can tell them apart.
template <class Record, class Same = SameBytes>
Record* FindSeen(std::vector<Record>& list, const Record& seen, std::size_t position, Same same = {}) {
    const auto looksAlike = [&](const Record& record) { return same(record, seen); };
    const auto after = list.begin() + static_cast<std::ptrdiff_t>(std::min(position + 1, list.size()));
    const auto before = std::find_if(std::make_reverse_iterator(after), list.rend(), looksAlike);
    if (before != list.rend()) return &*before;
    const auto behind = std::find_if(after, list.end(), looksAlike);
    return behind != list.end() ? &*behind : nullptr;
}

// In which row a screen shows now what it showed in `row` of the list `shown`, or its place when that is
// gone.
template <class Record, class Same = SameBytes>
int RowNow(std::vector<Record>& list, std::span<const Record> shown, int row, Same same = {}) {
    const Record* const seen = row < 0 ? nullptr : AtRow(shown, static_cast<std::size_t>(row));
    if (!seen) return row;
    const Record* const found = FindSeen(list, *seen, static_cast<std::size_t>(seen - shown.data()), same);
    return found ? static_cast<int>(list.data() + list.size() - 1 - found) : row;
}

// Threads, locking and files that are damaged: see StoreFile. A list is in the order of the file.
template <class Record>
class RecordFile {
    static_assert(std::is_trivially_copyable_v<Record> && std::has_unique_object_representations_v<Record>,
                  "a record is its bytes");

  public:
    using List = std::vector<Record>;

    RecordFile(UnitFiles& files, Log& log, const StorePlace& place)
        : m_file(files, log, place, sizeof(Record)) {}

    List Load() { return ListFrom(m_file.Load()); }

    // One operation: hands the file's list to change(list) and writes it back when that answers Done. Any
    // other answer is the result, and nothing is written.
    template <class Change>
    [[nodiscard]] StoreResult Update(SpaceGuard guard, Change change) {
        return m_file.Update(guard, [&](std::string& records) {
            List list = ListFrom(records);
            const StoreResult result = change(list);
            records.assign(reinterpret_cast<const char*>(list.data()), list.size() * sizeof(Record));
            return result;
        });
    }

    // Calls change(list, record) with the record that stood in row `row` of the list `shown`, wherever it
    // stands now, and writes the list back. NotFound when it is gone.
    template <class Change, class Same = SameBytes>
    [[nodiscard]] StoreResult UpdateRow(SpaceGuard guard, std::span<const Record> shown, std::size_t row,
                                        Change change, Same same = {}) {
        const Record* const seen = AtRow(shown, row);
        if (!seen) return StoreResult::NotFound;
        return Update(guard, [&](List& list) {
            const auto position = static_cast<std::size_t>(seen - shown.data());
            Record* const record = FindSeen(list, *seen, position, same);
            if (!record) return StoreResult::NotFound;
            change(list, *record);
            return StoreResult::Done;
        });
    }

    [[nodiscard]] StoreResult Append(const Record& record, SpaceGuard guard) {
        return Update(guard, [&](List& list) {
            list.push_back(record);
            return StoreResult::Done;
        });
    }

    // For a screen in the order of the file: `seen` stood at `index`.
    [[nodiscard]] StoreResult Change(const Record& seen, std::size_t index, const Record& changed) {
        return Update(SpaceGuard::On, [&](List& list) {
            Record* const record = FindSeen(list, seen, index);
            if (!record) return StoreResult::NotFound;
            *record = changed;
            return StoreResult::Done;
        });
    }
    [[nodiscard]] StoreResult Delete(const Record& seen, std::size_t index) {
        return Update(SpaceGuard::Off, [&](List& list) {
            Record* const record = FindSeen(list, seen, index);
            if (!record) return StoreResult::NotFound;
            list.erase(list.begin() + (record - list.data()));
            return StoreResult::Done;
        });
    }

    template <class Same = SameBytes>
    [[nodiscard]] StoreResult Delete(std::span<const Record> shown, std::size_t row, Same same = {}) {
        const auto erase = [](List& list, Record& record) {
            list.erase(list.begin() + (&record - list.data()));
        };
        return UpdateRow(SpaceGuard::Off, shown, row, erase, same);
    }

    // What has come since the list was shown stays. Records are the same when their first bytes are.
    [[nodiscard]] StoreResult DeleteShown(std::span<const Record> shown,
                                          std::size_t sameBytes = sizeof(Record)) {
        const auto key = [sameBytes](const Record& record) {
            return std::string_view(reinterpret_cast<const char*>(&record), sameBytes);
        };
        std::unordered_map<std::string_view, std::size_t> toDelete;
        for (const Record& record : shown)
            ++toDelete[key(record)];
        return Update(SpaceGuard::Off, [&](List& list) {
            std::erase_if(list, [&](const Record& record) {
                const auto found = toDelete.find(key(record));
                if (found == toDelete.end() || found->second == 0) return false;
                --found->second;
                return true;
            });
            return StoreResult::Done;
        });
    }

    // Leaves a file of no bytes.
    [[nodiscard]] StoreResult DeleteAll() {
        return Update(SpaceGuard::Off, [](List& list) {
            list.clear();
            return StoreResult::Done;
        });
    }

  private:
    static List ListFrom(std::string_view records) {
        List list(records.size() / sizeof(Record));
        if (!list.empty()) std::memcpy(list.data(), records.data(), list.size() * sizeof(Record));
        return list;
    }

    StoreFile m_file;
};

}  // namespace varkel
