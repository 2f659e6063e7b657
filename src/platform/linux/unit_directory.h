// Names inside a directory, found without regard to case and never outside of it.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/file_descriptor.h"

namespace varkel {

enum class Presence {
    There,
    Missing,
    Unknown,  // the system did not tell, or the name may not be used
};

// Where a file stands or would stand: its open directory and its name in there. Without a directory when one
// on the way is missing or cannot be read; the file is then Missing or Unknown.
struct PlacedFile {
    FileDescriptor directory;
    std::string name;
    Presence presence = Presence::Unknown;

    explicit operator bool() const { return bool(directory); }
    bool Exists() const { return presence == Presence::There; }
};

// Whether missing directories are made on the way.
enum class MissingVolume { Fail, Make };

// One tree of the file system below `root`. A name is looked for as it is spelt and then without regard to
// ASCII case. Symbolic links below the root are not followed, so nothing leads out of the tree.
class UnitDirectory {
  public:
    explicit UnitDirectory(std::string root) : m_root(std::move(root)) {}

    // Makes the root for the user alone.
    bool MakeRoot() const;

    // The place of the last of `names`. The first one, which is the volume, can be made on the way. Without
    // names nothing is known.
    PlacedFile Place(const std::vector<std::string>& names, MissingVolume missing) const;

    // Opens what stands at a place, with these flags; never through a link.
    static FileDescriptor Open(const PlacedFile& place, int flags);

  private:
    const std::string m_root;
};

}  // namespace varkel
