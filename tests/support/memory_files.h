// The unit's files in memory.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>

#include "platform/text.h"
#include "platform/unit_files.h"

namespace varkel::test {

class MemoryFiles final : public UnitFiles {
  public:
    bool CreateDirectory(std::string_view path) override {
        std::lock_guard lock(m_mutex);
        m_directories.insert(Key(path));
        return true;
    }

    bool Exists(std::string_view path) override {
        std::lock_guard lock(m_mutex);
        return m_files.contains(Key(path)) || m_directories.contains(Key(path));
    }

    FileRead Read(std::string_view path, std::size_t limit, std::string& bytes) override {
        std::lock_guard lock(m_mutex);
        bytes.clear();
        if (refuseToRead) return FileRead::Failed;
        const auto found = m_files.find(Key(path));
        if (found == m_files.end()) return FileRead::Missing;
        if (found->second.size() > limit) return FileRead::TooLarge;
        bytes = found->second;
        return FileRead::Whole;
    }

    bool WriteWhole(std::string_view path, std::string_view bytes) override {
        std::lock_guard lock(m_mutex);
        ++writes;
        if (refuseToWrite) return false;
        m_files[Key(path)] = bytes;
        return true;
    }

    std::unique_ptr<AppendFile> StartFile(std::string_view path) override {
        if (refuseToStart) return nullptr;
        std::lock_guard lock(m_mutex);
        m_files[Key(path)].clear();
        return std::make_unique<Appender>(*this, Key(path));
    }

    bool Rename(std::string_view from, std::string_view to) override {
        std::lock_guard lock(m_mutex);
        if (refuseToWrite) return false;
        auto file = m_files.extract(Key(from));
        if (!file) return false;
        m_files[Key(to)] = std::move(file.mapped());
        return true;
    }

    std::optional<std::uint64_t> GetDiskFreeSpace(std::string_view) override { return freeBytes; }

    // The bytes of a file; empty when there is none.
    std::string Content(std::string_view path) {
        std::lock_guard lock(m_mutex);
        return m_files[Key(path)];
    }

    bool refuseToStart = false;
    bool refuseToRead = false;
    bool refuseToWrite = false;
    int writes = 0;  // calls of WriteWhole
    std::uint64_t freeBytes = 64 * 1024 * 1024;

  private:
    struct Appender final : AppendFile {
        Appender(MemoryFiles& files, std::string key) : m_files(files), m_key(std::move(key)) {}
        bool Append(std::string_view bytes) override {
            std::lock_guard lock(m_files.m_mutex);
            m_files.m_files[m_key].append(bytes);
            return true;
        }
        MemoryFiles& m_files;
        std::string m_key;
    };

    static std::string Key(std::string_view path) {
        if (path.starts_with('\\')) path.remove_prefix(1);
        return LowerAscii(path);
    }

    std::mutex m_mutex;
    std::map<std::string, std::string> m_files;
    std::set<std::string> m_directories;
};

}  // namespace varkel::test
