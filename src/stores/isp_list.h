// The operators' list: the ways into packet data that the user edits and the SIM's operator chooses from.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "stores/isp_record.h"
#include "stores/record_file.h"

namespace varkel {

// A unit comes with a list on its read-only flash. A missing file is made from that, so that deleting the
// file restores the unit's own list; a list that the user has emptied stays empty. An operator is named by
// the record that was seen and the place where it stood, as in the phonebook. Any thread may call; a change
// takes as long as the flash needs.
class IspList {
  public:
    using List = std::vector<ISP_Struct>;

    IspList(UnitFiles& files, Log& log);

    // In the order of the file. None when neither file can be read, or the copy not be made.
    List Load() { return m_file.Load(); }
    // The first one that serves this IMSI.
    std::optional<ISP_Struct> Find(std::string_view imsi);

    // A new one comes first, so that it goes before those of the unit. These need 1 MiB of free space, or are
    // VolumeFull.
    [[nodiscard]] StoreResult Add(const ISP_Struct& isp);
    [[nodiscard]] StoreResult Change(const ISP_Struct& seen, std::size_t index, const ISP_Struct& changed) {
        return m_file.Change(seen, index, changed);
    }
    // Works on a full volume.
    [[nodiscard]] StoreResult Delete(const ISP_Struct& seen, std::size_t index) {
        return m_file.Delete(seen, index);
    }

  private:
    RecordFile<ISP_Struct> m_file;
};

}  // namespace varkel
