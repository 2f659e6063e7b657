// Feeds a fuzz target every file of the directories given on the command line.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "tests/support/scratch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            const std::string bytes = varkel::test::FileContent(entry.path());
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++files;
        }
    }
    std::printf("%d inputs\n", files);
    return files > 0 ? 0 : 1;
}
