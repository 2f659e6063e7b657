// What a power cut would leave of the files in one directory.
#pragma once

#include <functional>
#include <random>
#include <string>

namespace varkel::test {

// While it lives, every fsync and fdatasync of this process on a file in `directory` keeps a copy of what is
// on the disk from then on; everything later may be lost. Names are taken to be on the disk at once.
class DurableFiles {
  public:
    // `beforeSync` is called when a file is about to be copied.
    explicit DurableFiles(const std::string& directory, std::function<void()> beforeSync = {});
    ~DurableFiles();

    // Makes `target` what a power cut would leave at this moment: the copies, with any of the sectors that
    // were written since.
    static void CutPower(const std::string& target, std::mt19937_64& random);
    // From now on a sync fails, and does nothing.
    static void FailSyncs(bool fail);
};

}  // namespace varkel::test
