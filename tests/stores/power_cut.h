// A disk that the power goes from, and what that leaves of a directory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/stores/disk_double.h"

namespace varkel::test {

using DirectoryContent = std::map<std::string, std::string>;  // a file's bytes by its name

// What is certainly on the disk, and the steps that are still on their way to it.
class PoweredDisk {
  public:
    explicit PoweredDisk(const DirectoryContent& before) {
        for (const auto& [name, bytes] : before) {
            m_names[name] = static_cast<int>(m_contents.size());
            m_contents.push_back(bytes);
        }
        m_pending.resize(m_contents.size());
    }

    // The step stays where it is.
    void Do(const DiskStep& step) {
        const auto file = static_cast<std::size_t>(step.file);
        switch (step.kind) {
            case DiskStep::Create:
                m_contents.resize(file + 1);
                m_pending.resize(file + 1);
                m_pendingNames.push_back(&step);
                break;
            case DiskStep::Rename:
            case DiskStep::Unlink: m_pendingNames.push_back(&step); break;
            case DiskStep::Write:
            case DiskStep::Resize:
            case DiskStep::Allocate: m_pending[file].push_back(&step); break;
            case DiskStep::SyncFile: Sync(m_pending[file], m_contents[file]); break;
            case DiskStep::SyncDirectory: Sync(m_pendingNames, m_names); break;
        }
    }

    // Only the program ended: all its steps are made.
    void SyncAll() {
        for (std::size_t file = 0; file < m_contents.size(); ++file)
            Sync(m_pending[file], m_contents[file]);
        Sync(m_pendingNames, m_names);
    }

    // What was synced is there. Of the rest each change of a name is there or not, a write is there, not, or
    // in some of its sectors, and later changes may have been made before earlier ones. A renaming is made
    // whole or not at all.
    void LosePower(std::mt19937_64& random) {
        for (std::size_t file = 0; file < m_contents.size(); ++file) {
            std::shuffle(m_pending[file].begin(), m_pending[file].end(), random);
            for (const DiskStep* const step : m_pending[file]) {
                const auto fate = random() % 3;
                if (fate == 0) Apply(*step, m_contents[file]);
                if (fate == 1 && step->kind == DiskStep::Write) ApplyTorn(*step, m_contents[file], random);
            }
        }
        for (const DiskStep* const step : m_pendingNames) {
            if (random() % 2 == 0) Apply(*step, m_names);
        }
    }

    DirectoryContent Content() const {
        DirectoryContent content;
        for (const auto& [name, file] : m_names)
            content[name] = m_contents[static_cast<std::size_t>(file)];
        return content;
    }

  private:
    using Steps = std::vector<const DiskStep*>;
    using Names = std::map<std::string, int>;

    static void Apply(const DiskStep& step, std::string& content) {
        if (step.kind == DiskStep::Write) {
            content.resize(std::max(content.size(), step.offset + step.bytes.size()));
            content.replace(step.offset, step.bytes.size(), step.bytes);
        }
        if (step.kind == DiskStep::Resize) content.resize(step.size);
        if (step.kind == DiskStep::Allocate) content.resize(std::max(content.size(), step.size));
    }

    static void Apply(const DiskStep& step, Names& names) {
        const auto known = names.find(step.name);
        if (known != names.end() && known->second == step.file) names.erase(known);
        if (step.kind == DiskStep::Create) names[step.name] = step.file;
        if (step.kind == DiskStep::Rename) names[step.newName] = step.file;
    }

    static void ApplyTorn(const DiskStep& step, std::string& content, std::mt19937_64& random) {
        constexpr std::size_t sector = 512;
        DiskStep part{.kind = DiskStep::Write};
        for (std::size_t at = 0; at < step.bytes.size(); at += sector) {
            part.offset = step.offset + at;
            part.bytes = step.bytes.substr(at, sector);
            if (random() % 2 == 0) Apply(part, content);
        }
    }

    template <class State>
    static void Sync(Steps& pending, State& state) {
        for (const DiskStep* const step : pending)
            Apply(*step, state);
        pending.clear();
    }

    Names m_names;
    std::vector<std::string> m_contents;
    std::vector<Steps> m_pending;
    Steps m_pendingNames;
};

}  // namespace varkel::test
