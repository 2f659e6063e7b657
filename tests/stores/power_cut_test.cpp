// The power goes at any moment of any update, and the update goes on from whatever that left.
#include "tests/stores/power_cut.h"

#include <gtest/gtest.h>

#include "tests/stores/store_changes.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

// How often each kind of thing came about, so that a test which proves nothing is noticed.
struct Tally {
    int cuts = 0;
    int updatesWithReserve = 0;
    int updatesWithoutRoom = 0;
};

class Life {
  public:
    Life(StoresOnDisk& stores, std::uint64_t seed, Tally& tally)
        : m_stores(stores), m_random(seed), m_seed(seed), m_tally(tally) {
        for (const char* const name : {"InboxMs.msm", "OutboxMs.msm", "DraftsMs.msm"})
            m_before[name] = BytesOf(Several(Message, 0, Number(151) - 1));
        const int records = Number(200);
        m_before["dialcall.msm"] = BytesOf(Several(Call, 1, records));
        m_before["phonebook.msm"] = BytesOf(Several(Phone, 1, records));
        // Fewer, because they are long.
        m_before["ISPDest.dat"] = BytesOf(Several(Isp, 1, std::min(records, 20)));
        m_before["receivecall.msm"] = std::string(300, 'r');
        if (Number(4) != 0) m_before["reserve~"] = std::string(64 * 1024, '\0');
        if (Number(4) == 0) m_before["InboxMs.msm.new~"] = std::string(m_random() % 40000, 'n');
    }

    void Live() {
        for (int number = 1000; number < 1004; ++number) {
            m_stores.Put(m_before);
            const StoreChange change =
                ChangeOf(m_stores, static_cast<unsigned>(Number(changeKinds)), m_random(), number);
            DiskDouble disk(m_stores.directory);
            const bool full = Number(2) == 0;
            if (full) disk.SetRoom(Number(3) * 4096);
            const StoreResult result = change.make();
            Judge(change, result, disk.Steps(), full);
            CutAnywhere(change, result == StoreResult::Done, disk.Steps());
        }
    }

  private:
    int Number(unsigned below) { return static_cast<int>(m_random() % below); }

    // A full volume refuses what needs room, and everything only when it has lost its reserve too.
    void Judge(const StoreChange& change, StoreResult result, const std::vector<DiskStep>& steps, bool full) {
        const auto reserve = m_before.find("reserve~");
        const bool reserved = reserve != m_before.end() && reserve->second.size() >= 64 * 1024;
        if (!full || (reserved && !change.needsRoom)) {
            EXPECT_EQ(result, StoreResult::Done) << change.what << ", seed " << m_seed;
        }
        if (full && change.needsRoom) {
            EXPECT_EQ(result, StoreResult::VolumeFull) << change.what << ", seed " << m_seed;
        }
        m_tally.updatesWithoutRoom += full;
        m_tally.updatesWithReserve += std::any_of(steps.begin(), steps.end(), [](const DiskStep& step) {
            return step.kind == DiskStep::Rename && step.name == "reserve~";
        });
    }

    void CutAnywhere(const StoreChange& change, bool done, const std::vector<DiskStep>& steps) {
        PoweredDisk disk(m_before);
        DirectoryContent next;
        for (std::size_t cut = 0; cut <= steps.size(); ++cut) {
            if (cut > 0) disk.Do(steps[cut - 1]);
            const bool made = done && cut == steps.size();
            PoweredDisk killed = disk;
            killed.SyncAll();
            Check(change, killed.Content(), made);
            if (cut == steps.size()) {
                ASSERT_EQ(killed.Content(), m_stores.Content()) << "the model is the disk, seed " << m_seed;
            }
            for (int order = 0; order < 5; ++order) {
                PoweredDisk left = disk;
                left.LosePower(m_random);
                Check(change, left.Content(), made);
                ++m_tally.cuts;
                if (Number(20) == 0) next = left.Content();
            }
            if (next.empty() && cut == steps.size()) next = killed.Content();
        }
        m_before = std::move(next);
    }

    // The store holds the list before or the one after the update, and no other file was harmed.
    void Check(const StoreChange& change, const DirectoryContent& left, bool made) {
        for (const auto& [name, bytes] : m_before) {
            if (name.ends_with('~')) continue;
            const auto found = left.find(name);
            ASSERT_NE(found, left.end()) << name << " is gone, " << change.what << ", seed " << m_seed;
            const bool changed = name == change.file;
            const bool isNew = changed && found->second == change.after;
            ASSERT_TRUE(isNew || (found->second == bytes && !(made && changed)))
                << name << " after " << change.what << ", seed " << m_seed;
        }
    }

    StoresOnDisk& m_stores;
    std::mt19937_64 m_random;
    const std::uint64_t m_seed;
    Tally& m_tally;
    DirectoryContent m_before;
};

TEST(PowerCut, LeavesTheListBeforeOrAfter) {
    StoresOnDisk stores;
    Tally tally;
    const std::uint64_t seeds =
        ForEachSeed(1000, [&](std::uint64_t seed) { Life(stores, seed, tally).Live(); });
    if (seeds < 100) return;
    EXPECT_GE(tally.cuts, 100 * static_cast<int>(seeds));
    EXPECT_GT(tally.updatesWithReserve, static_cast<int>(seeds) / 4);
    EXPECT_GT(tally.updatesWithoutRoom, static_cast<int>(seeds));
    std::printf("%d cuts, %d updates from the reserve\n", tally.cuts, tally.updatesWithReserve);
}

}  // namespace
}  // namespace varkel::test
