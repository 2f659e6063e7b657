// The unit's files in memory.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "platform/guarded.h"
#include "platform/text.h"
#include "platform/unit_files.h"

namespace varkel::test {

class MemoryFiles final : public UnitFiles {
  public:
    bool CreateDirectory(std::string_view path) override {
        m_files.With([&](Files& files) { files.try_emplace(Key(path) + '\\'); });
        return true;
    }

    bool Exists(std::string_view path) override {
        const std::string key = Key(path);
        return m_files.With([&](Files& files) { return files.contains(key) || files.contains(key + '\\'); });
    }

    FileRead Read(std::string_view path, std::size_t limit, std::string& bytes) override {
        bytes.clear();
        if (refuseToRead) return FileRead::Failed;
        return m_files.With([&](Files& files) {
            const auto found = files.find(Key(path));
            if (found == files.end()) return FileRead::Missing;
            if (found->second.size() > limit) return FileRead::TooLarge;
            bytes = found->second;
            return FileRead::Whole;
        });
    }

    bool WriteWhole(std::string_view path, std::string_view bytes) override {
        ++writes;
        if (refuseToWrite) return false;
        m_files.With([&](Files& files) { files[Key(path)] = bytes; });
        return true;
    }

    std::unique_ptr<AppendFile> StartFile(std::string_view path) override {
        if (refuseToStart) return nullptr;
        m_files.With([&](Files& files) { files[Key(path)].clear(); });
        return std::make_unique<Appender>(*this, Key(path));
    }

    bool Rename(std::string_view from, std::string_view to) override {
        if (refuseToWrite) return false;
        return m_files.With([&](Files& files) {
            auto file = files.extract(Key(from));
            if (file) files[Key(to)] = std::move(file.mapped());
            return !file.empty();
        });
    }

    std::optional<std::uint64_t> GetDiskFreeSpace(std::string_view) override { return freeBytes; }

    // The bytes of a file; empty when there is none.
    std::string Content(std::string_view path) {
        return m_files.With([&](Files& files) { return files[Key(path)]; });
    }

    bool refuseToStart = false;
    bool refuseToRead = false;
    bool refuseToWrite = false;
    std::atomic<int> writes = 0;  // calls of WriteWhole
    std::uint64_t freeBytes = 64 * 1024 * 1024;

  private:
    using Files = std::map<std::string, std::string>;  // a directory's name ends with a backslash

    struct Appender final : AppendFile {
        Appender(MemoryFiles& files, std::string key) : m_owner(files), m_key(std::move(key)) {}
        bool Append(std::string_view bytes) override {
            m_owner.m_files.With([&](Files& files) { files[m_key].append(bytes); });
            return true;
        }
        MemoryFiles& m_owner;
        std::string m_key;
    };

    static std::string Key(std::string_view path) {
        if (path.starts_with('\\')) path.remove_prefix(1);
        return LowerAscii(path);
    }

    Guarded<Files> m_files;
};

}  // namespace varkel::test
