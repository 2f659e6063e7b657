// The power goes at any moment of any update, and the update goes on from whatever that left.
#include "tests/stores/power_cut.h"

#include <gtest/gtest.h>

#include "tests/stores/box_fixture.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

const char* const boxNames[] = {"InboxMs.msm", "OutboxMs.msm", "DraftsMs.msm"};

// One update of a random store.
struct Update {
    const char* file;
    std::string name;
    std::string expected;  // what the file holds when it was made
    StoreResult result;
    bool addsInFront = false;
};

Update UpdateBox(MessageBoxes& boxes, std::mt19937_64& random, int number) {
    MessageBox* const all[] = {&boxes.inbox, &boxes.outbox, &boxes.drafts};
    const auto which = random() % std::size(all);
    MessageBox& box = *all[which];
    MessageBox::List list = box.FindSmsRecord();
    const std::size_t row = list.empty() ? 0 : random() % list.size();
    const auto position = static_cast<std::ptrdiff_t>(list.size() - 1 - row);
    Update update{boxNames[which], "append", "", StoreResult::Done};
    switch (list.empty() ? 0 : random() % 4) {
        case 0:
            list.push_back(Message(number));
            if (list.size() > SmsBoxCapacity) list.erase(list.begin());
            update.expected = BytesOf(list);
            update.result = box.WriteSmsRecord(Message(number));
            break;
        case 1:
            update.name = "delete";
            update.result = box.Delete(list, row);
            list.erase(list.begin() + position);
            update.expected = BytesOf(list);
            break;
        case 2:
            update.name = "mark read";
            update.result = box.MarkRead(list, row);
            if (which == 0) list[list.size() - 1 - row].Index = SmsState::Opened;
            update.expected = BytesOf(list);
            break;
        default:
            update.name = "delete all";
            update.result = box.DeleteAll();
            break;
    }
    return update;
}

Update UpdateCalls(CallList& calls, std::mt19937_64& random, int number) {
    CallList::List list = calls.FindCallRecord();
    Update update{"dialcall.msm", "append", "", StoreResult::Done};
    if (list.empty() || random() % 2 == 0) {
        update.result = calls.WriteCallRecord(Call(number));
        list.push_back(Call(number));
    } else {
        const std::size_t row = random() % list.size();
        update.name = "delete";
        update.result = calls.Delete(list, row);
        list.erase(list.end() - 1 - static_cast<std::ptrdiff_t>(row));
    }
    update.expected = BytesOf(list);
    return update;
}

// The phonebook and the operators, whose screens name a record by its place in the file.
template <class Store, class Record>
Update UpdateInOrder(Store& store, Update update, const Record& record, std::mt19937_64& random) {
    auto list = store.Load();
    const std::size_t index = list.empty() ? 0 : random() % list.size();
    switch (list.empty() ? 0 : random() % 3) {
        case 0:
            update.result = store.Add(record);
            list.insert(update.addsInFront ? list.begin() : list.end(), record);
            break;
        case 1:
            // A change is held to the same room as an append.
            update.result = store.Change(list[index], index, record);
            list[index] = record;
            break;
        default:
            update.name = "delete";
            update.result = store.Delete(list[index], index);
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
            break;
    }
    update.expected = BytesOf(list);
    return update;
}

Update MakeUpdate(BoxesOnDisk& disk, std::mt19937_64& random, int number) {
    switch (random() % 5) {
        case 0: return UpdateCalls(disk.calls.dialled, random, number);
        case 1:
            return UpdateInOrder(disk.phones, {"phonebook.msm", "append", "", StoreResult::Done},
                                 Phone(number), random);
        case 2:
            return UpdateInOrder(disk.isps, {"ISPDest.dat", "append", "", StoreResult::Done, true},
                                 Isp(number), random);
        default: return UpdateBox(disk.boxes, random, number);
    }
}

// How often each kind of thing came about, so that a test which proves nothing is noticed.
struct Tally {
    int cuts = 0;
    int updatesWithReserve = 0;
    int updatesWithoutRoom = 0;
};

class Life {
  public:
    Life(BoxesOnDisk& disk, std::uint64_t seed, Tally& tally)
        : m_disk(disk), m_random(seed), m_seed(seed), m_tally(tally) {
        for (const char* const name : boxNames)
            m_before[name] = BytesOf(Messages(0, static_cast<int>(m_random() % 151) - 1));
        for (int number = static_cast<int>(m_random() % 200); number > 0; --number) {
            m_before["dialcall.msm"] += BytesOf(std::vector{Call(number)});
            m_before["phonebook.msm"] += BytesOf(std::vector{Phone(number)});
            // Fewer, because they are long.
            if (number <= 20) m_before["ISPDest.dat"] += BytesOf(std::vector{Isp(number)});
        }
        m_before["receivecall.msm"] = std::string(300, 'r');
        if (m_random() % 4 != 0) m_before["reserve~"] = std::string(64 * 1024, '\0');
        if (m_random() % 4 == 0) m_before["InboxMs.msm.new~"] = std::string(m_random() % 40000, 'n');
    }

    void Live() {
        for (int number = 1000; number < 1004; ++number) {
            m_disk.Put(m_before);
            DiskDouble disk(m_disk.directory);
            const bool full = m_random() % 2 == 0;
            if (full) disk.SetRoom(static_cast<std::int64_t>(m_random() % 3) * 4096);
            const Update update = MakeUpdate(m_disk, m_random, number);
            Judge(update, disk.Steps(), full);
            CutAnywhere(update, disk.Steps());
        }
    }

  private:
    // Only an append may be refused, and only a volume that lost its reserve too refuses another update.
    void Judge(const Update& update, const std::vector<DiskStep>& steps, bool full) {
        const auto reserve = m_before.find("reserve~");
        const bool reserved = reserve != m_before.end() && reserve->second.size() >= 64 * 1024;
        const bool append = update.name == "append";
        if (!full || (reserved && !append)) {
            EXPECT_EQ(update.result, StoreResult::Done) << update.name << ", seed " << m_seed;
        }
        if (full && append) {
            EXPECT_EQ(update.result, StoreResult::VolumeFull) << "seed " << m_seed;
        }
        m_tally.updatesWithoutRoom += full;
        m_tally.updatesWithReserve += std::any_of(steps.begin(), steps.end(), [](const DiskStep& step) {
            return step.kind == DiskStep::Rename && step.name == "reserve~";
        });
    }

    void CutAnywhere(const Update& update, const std::vector<DiskStep>& steps) {
        DirectoryContent next = AfterKill(m_before, steps, steps.size());
        Check(update, next, update.result == StoreResult::Done);
        ASSERT_EQ(next, m_disk.Content()) << "the model is the file system, seed " << m_seed;
        for (std::size_t cut = 0; cut <= steps.size(); ++cut) {
            Check(update, AfterKill(m_before, steps, cut), false);
            for (int order = 0; order < 5; ++order) {
                DirectoryContent left = AfterPowerCut(m_before, steps, cut, m_random);
                Check(update, left, cut == steps.size() && update.result == StoreResult::Done);
                ++m_tally.cuts;
                if (m_random() % 20 == 0) next = std::move(left);
            }
        }
        m_before = std::move(next);
    }

    // The box holds the list before or the one after the update, and no other file was harmed.
    void Check(const Update& update, const DirectoryContent& left, bool done) {
        for (const auto& [name, bytes] : m_before) {
            if (name.ends_with('~')) continue;
            const auto found = left.find(name);
            ASSERT_NE(found, left.end()) << name << " is gone, " << update.name << ", seed " << m_seed;
            const bool changed = name == update.file;
            const bool old = found->second == bytes;
            const bool isNew = changed && found->second == update.expected;
            ASSERT_TRUE(isNew || (old && !(done && changed)))
                << name << " after " << update.name << ", seed " << m_seed;
        }
    }

    BoxesOnDisk& m_disk;
    std::mt19937_64 m_random;
    const std::uint64_t m_seed;
    Tally& m_tally;
    DirectoryContent m_before;
};

TEST(PowerCut, LeavesTheListBeforeOrAfter) {
    BoxesOnDisk disk;
    Tally tally;
    const std::uint64_t seeds =
        ForEachSeed(1000, [&](std::uint64_t seed) { Life(disk, seed, tally).Live(); });
    if (seeds < 100) return;
    EXPECT_GE(tally.cuts, 100 * static_cast<int>(seeds));
    EXPECT_GT(tally.updatesWithReserve, static_cast<int>(seeds) / 4);
    EXPECT_GT(tally.updatesWithoutRoom, static_cast<int>(seeds));
    std::printf("%d cuts, %d updates from the reserve\n", tally.cuts, tally.updatesWithReserve);
}

}  // namespace
}  // namespace varkel::test
