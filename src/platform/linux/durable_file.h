// Replacing a file so that a power cut leaves the old bytes or the new, also when the volume is full.
#pragma once

#include <string>
#include <string_view>

namespace varkel {

// Gives the file `name` of the open `directory` these bytes: prepares "<name>.new~" beside it, syncs it,
// renames it over the file and syncs the directory. True when all of that worked. False, and the old file
// stands as it was, when anything before the renaming failed; when only the sync of the directory fails, the
// new bytes stand there but a power cut may bring the old ones back.
//
// The directory also holds "reserve~", a file without content that keeps as much room as the largest file
// written here needs, at least 64 KiB. When nothing else can be written, bytes that are no longer than the
// old ones are put into it and it is renamed over the file; what that frees makes the next reserve. The
// reserve is made after the first write in a directory, and after any later one that finds it missing.
//
// One call at a time for one directory.
[[nodiscard]] bool ReplaceDurably(int directory, const std::string& name, std::string_view bytes);

}  // namespace varkel
