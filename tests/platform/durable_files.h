// What a power cut would leave of the files in one directory.
#pragma once

#include <string>

namespace varkel::test {

// While it lives, every fsync and fdatasync of this process on a file in `directory` copies the file to
// `mirror`, and one on the directory renames and removes there what was renamed and removed. So the mirror is
// what is on the disk for certain; everything later may be lost.
class DurableFiles {
  public:
    DurableFiles(const std::string& directory, const std::string& mirror);
    ~DurableFiles();
};

}  // namespace varkel::test
