#include "tests/stores/power_cut.h"

#include <algorithm>
#include <vector>

namespace varkel::test {

namespace {

void Apply(const DiskStep& step, std::string& content) {
    if (step.kind == DiskStep::Write) {
        content.resize(std::max(content.size(), step.offset + step.bytes.size()));
        content.replace(step.offset, step.bytes.size(), step.bytes);
    }
    if (step.kind == DiskStep::Resize) content.resize(step.size);
    if (step.kind == DiskStep::Allocate) content.resize(std::max(content.size(), step.size));
}

void Apply(const DiskStep& step, std::map<std::string, int>& names) {
    const auto known = names.find(step.name);
    if (known != names.end() && known->second == step.file) names.erase(known);
    if (step.kind == DiskStep::Create) names[step.name] = step.file;
    if (step.kind == DiskStep::Rename) names[step.newName] = step.file;
}

// Only some sectors of the write reach the disk.
void ApplyTorn(const DiskStep& step, std::string& content, std::mt19937_64& random) {
    constexpr std::size_t sector = 512;
    for (std::size_t at = 0; at < step.bytes.size(); at += sector) {
        if (random() % 2 == 0) continue;
        Apply({.kind = DiskStep::Write, .offset = step.offset + at, .bytes = step.bytes.substr(at, sector)},
              content);
    }
}

// A disk with what is certainly on it, and what is still on its way.
class Disk {
  public:
    explicit Disk(const DirectoryContent& before) {
        for (const auto& [name, bytes] : before) {
            m_names[name] = static_cast<int>(m_contents.size());
            m_contents.push_back(bytes);
        }
        m_pending.resize(m_contents.size());
    }

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
            case DiskStep::SyncFile: SyncFile(file); break;
            case DiskStep::SyncDirectory: SyncNames(); break;
        }
    }

    void SyncAll() {
        for (std::size_t file = 0; file < m_contents.size(); ++file)
            SyncFile(file);
        SyncNames();
    }

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
    void SyncFile(std::size_t file) {
        for (const DiskStep* const step : m_pending[file])
            Apply(*step, m_contents[file]);
        m_pending[file].clear();
    }

    void SyncNames() {
        for (const DiskStep* const step : m_pendingNames)
            Apply(*step, m_names);
        m_pendingNames.clear();
    }

    std::map<std::string, int> m_names;
    std::vector<std::string> m_contents;
    std::vector<std::vector<const DiskStep*>> m_pending;
    std::vector<const DiskStep*> m_pendingNames;
};

}  // namespace

DirectoryContent AfterPowerCut(const DirectoryContent& before, std::span<const DiskStep> steps,
                               std::size_t cut, std::mt19937_64& random) {
    Disk disk(before);
    for (const DiskStep& step : steps.first(cut))
        disk.Do(step);
    disk.LosePower(random);
    return disk.Content();
}

DirectoryContent AfterKill(const DirectoryContent& before, std::span<const DiskStep> steps, std::size_t cut) {
    Disk disk(before);
    for (const DiskStep& step : steps.first(cut))
        disk.Do(step);
    disk.SyncAll();
    return disk.Content();
}

}  // namespace varkel::test
