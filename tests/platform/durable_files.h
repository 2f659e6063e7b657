// What a power cut would leave of the files in one directory.
#pragma once

#include <functional>
#include <random>
#include <string>

namespace varkel::test {

// While it lives, every fsync and fdatasync of this process on a file in `directory` copies the file to
// `mirror`, and one on the directory renames and removes there what was renamed and removed. So the mirror is
// what is on the disk for certain; everything later may be lost.
class DurableFiles {
  public:
    // `beforeSync` is called when a file is about to be copied.
    DurableFiles(const std::string& directory, const std::string& mirror,
                 std::function<void()> beforeSync = {});
    ~DurableFiles();

    // Makes `target` what a power cut would leave at this moment: the mirror, with any of the sectors that
    // were written since.
    static void CutPower(const std::string& target, std::mt19937_64& random);
    // From now on a sync fails, and does nothing.
    static void FailSyncs(bool fail);
};

}  // namespace varkel::test
