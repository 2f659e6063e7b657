// The local phonebook.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "stores/phone_book_record.h"
#include "stores/record_file.h"

namespace varkel {

// The file of all entries, in the order in which they are shown. Every call opens it, does one thing and
// closes it: a list on the screen is a copy, which is why an entry is always named by the record that was
// seen and the place where it stood. Any thread may call; a change takes as long as the flash needs.
class PhoneBookFile {
  public:
    using List = std::vector<PhoneBookRecord>;

    PhoneBookFile(UnitFiles& files, Log& log);

    // None when the file cannot be read.
    List Load();
    // The name of the first record that has exactly this number; nothing when none has. An empty number is
    // nobody's.
    std::optional<std::string> FindName(std::string_view number);

    // These need 1 MiB of free space, or are VolumeFull.
    [[nodiscard]] StoreResult Add(const PhoneBookRecord& record);
    [[nodiscard]] StoreResult Change(const PhoneBookRecord& seen, std::size_t index,
                                     const PhoneBookRecord& changed);
    // Works on a full volume.
    [[nodiscard]] StoreResult Delete(const PhoneBookRecord& seen, std::size_t index);

  private:
    // The two lines that frame each use of the file in the log.
    class Opened {
      public:
        explicit Opened(Log& log) : m_log(log) { m_log.Trace("OpenPhoneBookFile--begin\r\n"); }
        ~Opened() { m_log.Trace("CloseFile--begin\r\n"); }
        Opened(const Opened&) = delete;
        Opened& operator=(const Opened&) = delete;

      private:
        Log& m_log;
    };

    Log& m_log;
    RecordFile<PhoneBookRecord> m_file;
};

}  // namespace varkel
