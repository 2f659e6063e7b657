// What the system knows of this program's threads.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/scratch.h"

namespace varkel::test {

inline std::ptrdiff_t ThreadCount() {
    const std::filesystem::directory_iterator all("/proc/self/task");
    return std::distance(begin(all), end(all));
}

// Voluntary switches of the thread of that name so far: each is a sleep, and so a wake-up. -1 without it.
inline long WakeUpsOf(const std::string& thread) {
    long switches = -1;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        if (FileContent(task.path() / "comm") != thread + "\n") continue;
        std::ifstream status(task.path() / "status");
        for (std::string word; status >> word;) {
            if (word == "voluntary_ctxt_switches:") status >> switches;
        }
    }
    return switches;
}

}  // namespace varkel::test
