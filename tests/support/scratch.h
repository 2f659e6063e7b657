// What tests of the Linux backend need of the system: a directory of their own, a count of open descriptors.
#pragma once

#include <cassert>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>

namespace varkel::test {

// A new empty directory, removed with all it holds. In "/dev/shm" it is never on a disk, for tests that write
// a lot.
class ScratchDirectory {
  public:
    explicit ScratchDirectory(const std::string& parent = "/tmp") : m_path(parent + "/varkel-test-XXXXXX") {
        [[maybe_unused]] const char* const made = mkdtemp(m_path.data());
        assert(made);
    }
    ~ScratchDirectory() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& Path() const { return m_path; }
    std::string operator/(std::string_view name) const { return m_path + "/" + std::string(name); }

  private:
    std::string m_path;
};

inline void WriteFile(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string FileContent(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline unsigned FileMode(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777u : 0;
}

inline std::ptrdiff_t OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

// How many descriptors a program that is started would inherit.
inline int InheritableDescriptors() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fdinfo")) {
        std::ifstream info(entry.path());
        for (std::string word; info >> word;) {
            if (word != "flags:") continue;
            info >> word;
            if ((std::strtoul(word.c_str(), nullptr, 8) & 02000000u) == 0) ++count;
        }
    }
    return count;
}

// What the calling thread has cost so far.
struct ThreadCost {
    long wakeUps = 0;
    long cpuMilliseconds = 0;
};

inline ThreadCost CostOfThisThread() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    const auto milliseconds = [](const timeval& time) { return time.tv_sec * 1000 + time.tv_usec / 1000; };
    return {usage.ru_nvcsw, milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime)};
}

}  // namespace varkel::test
