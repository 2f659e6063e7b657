// The unit's flash as directory trees: the unit's own, and below it what is installed, read only.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/unit_directory.h"
#include "platform/unit_files.h"

namespace varkel {

// A file is looked for below the root, then in the skin, then among the assets; everything that is written
// lands below the root. Names match without regard to ASCII case. The volume, which is the first name of a
// path, is made when it is missing, as on a unit it is always there. All belongs to the user alone.
//
// A WriteWhole whose very last step fails (making the directory durable) returns false although the new bytes
// stand there.
class LinuxUnitFiles final : public UnitFiles {
  public:
    // Without a skin there is one directory less to look in.
    LinuxUnitFiles(std::string root, std::string assets, std::string skin = {});

    bool CreateDirectory(std::string_view path) override;
    bool Exists(std::string_view path) override;
    FileRead Read(std::string_view path, std::size_t limit, std::string& bytes) override;
    bool WriteWhole(std::string_view path, std::string_view bytes) override;
    std::unique_ptr<AppendFile> StartFile(std::string_view path) override;
    bool Rename(std::string_view from, std::string_view to) override;
    std::optional<std::uint64_t> GetDiskFreeSpace(std::string_view volume) override;

  private:
    // Where the file stands.
    PlacedFile Find(std::string_view path) const;

    const UnitDirectory m_root;
    std::vector<UnitDirectory> m_installed;  // in the order in which they are looked through
    std::mutex m_writing;                    // one WriteWhole at a time: they share a directory's reserve
};

}  // namespace varkel
