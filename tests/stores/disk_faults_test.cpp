// Every call to the system fails in its turn, once or from then on.
#include <cerrno>
#include <gtest/gtest.h>

#include "platform/text.h"
#include "tests/stores/disk_double.h"
#include "tests/stores/store_changes.h"

namespace varkel::test {
namespace {

using Content = std::map<std::string, std::string>;

const Content before{{"InboxMs.msm", BytesOf(Several(Message, 1, 10))},
                     {"OutboxMs.msm", "other"},
                     {"dialcall.msm", BytesOf(Several(Call, 1, 3))},
                     {"phonebook.msm", BytesOf(Several(Phone, 1, 3))},
                     {"ISPDest.dat", BytesOf(Several(Isp, 1, 3))}};

class DiskFaults : public testing::Test {
  protected:
    // Hands judge() the result of run() with each of its calls failing in turn; returns how many it makes.
    template <class Run, class Judge>
    int FailEachCall(const Content& content, int error, bool forEver, Run run, Judge judge) {
        int call = 0;
        for (bool reached = true; reached && !HasFailure();) {
            ++call;
            SCOPED_TRACE(testing::Message()
                         << "call " << call << " fails with " << error << (forEver ? " for ever" : " once"));
            stores.Put(content);
            const auto descriptors = OpenDescriptors();
            DiskDouble faults(stores.directory);
            faults.Fail({call, forEver, error});
            const auto result = run();
            reached = faults.Calls() >= call;
            faults.Fail({});
            EXPECT_EQ(OpenDescriptors(), descriptors);
            judge(result);
        }
        return call;
    }

    void FailEachCallOfEveryChange(int error, bool forEver, bool reserve) {
        // A file whose name is spelt otherwise is found by listing the directory.
        const auto spelt = [&](const std::string& name) { return reserve ? name : LowerAscii(name); };
        Content content;
        for (const auto& [name, bytes] : before)
            content[spelt(name)] = bytes;
        if (reserve) content["reserve~"] = std::string(64 * 1024, '\0');
        for (unsigned kind = 0; kind < changeKinds; ++kind) {
            stores.Put(content);
            const StoreChange change = ChangeOf(stores, kind, 7, 11);
            SCOPED_TRACE(testing::Message() << change.what << " in " << spelt(change.file));
            Content changed = content;
            changed[spelt(change.file)] = change.after;
            const int calls = FailEachCall(content, error, forEver, change.make, [&](StoreResult result) {
                const Content left = Lists(stores.Content());
                const bool isOld = left == Lists(content);
                const bool isNew = left == Lists(changed);
                switch (result) {
                    case StoreResult::Done: EXPECT_TRUE(isNew); break;
                    // When it is only the directory that was not synced, the new list stands there.
                    case StoreResult::WriteFailed: EXPECT_TRUE(isOld || isNew); break;
                    case StoreResult::Unreadable: EXPECT_TRUE(isOld); break;
                    default: ADD_FAILURE() << "result " << static_cast<int>(result); break;
                }
                MessageBox::List next = inbox.FindSmsRecord();
                next.push_back(Message(12));
                EXPECT_EQ(inbox.WriteSmsRecord(Message(12)), StoreResult::Done) << "the next one works";
                EXPECT_EQ(BytesOf(inbox.FindSmsRecord()), BytesOf(next));
            });
            EXPECT_GT(calls, 20) << "so many calls make an update";
        }
    }

    static Content Lists(Content files) {
        std::erase_if(files, [](const auto& file) { return file.first.ends_with('~'); });
        return files;
    }

    StoresOnDisk stores;
    MessageBox& inbox = stores.boxes.inbox;
};

TEST_F(DiskFaults, OfOneCallLeaveOldOrNewList) {
    for (const int error : {EIO, ENOSPC, EINTR, 0}) {
        for (const bool reserve : {false, true})
            FailEachCallOfEveryChange(error, false, reserve);
    }
}

TEST_F(DiskFaults, FromOneCallOnLeaveOldOrNewList) {
    for (const int error : {EIO, ENOSPC, 0}) {
        for (const bool reserve : {false, true})
            FailEachCallOfEveryChange(error, true, reserve);
    }
}

// Whatever fails, an existing list is never taken for a missing one and written over, and of a missing one no
// part is made.
TEST_F(DiskFaults, OnReadingGiveTheListOrNone) {
    const std::string factory = BytesOf(Several(Isp, 4, 9));
    std::filesystem::create_directories(stores.scratch / "assets/ResidentFlash2/bin/Gprs");
    WriteFile(stores.scratch / "assets/ResidentFlash2/bin/Gprs/ISPDest.dat", factory);
    for (const Content& content : {before, Content()}) {
        const std::string expected = content.empty() ? factory : content.at("ISPDest.dat");
        for (const bool forEver : {false, true}) {
            for (const int error : {EIO, 0}) {
                const int calls = FailEachCall(
                    content, error, forEver, [&] { return stores.isps.Load(); },
                    [&](const IspList::List& list) {
                        EXPECT_TRUE(list.empty() || BytesOf(list) == expected);
                        EXPECT_EQ(BytesOf(stores.isps.Load()), expected);
                    });
                EXPECT_GT(calls, content.empty() ? 20 : 4);
            }
        }
    }
}

TEST_F(DiskFaults, WithoutAnyRoomOnlyWhatNeedsRoomFails) {
    for (unsigned kind = 0; kind < changeKinds; ++kind) {
        stores.Put(before);
        EXPECT_EQ(inbox.WriteSmsRecord(Message(12)), StoreResult::Done) << "makes the reserve";
        EXPECT_EQ(inbox.Delete(inbox.FindSmsRecord(), 0), StoreResult::Done);
        const StoreChange change = ChangeOf(stores, kind, 7, 11);
        DiskDouble faults(stores.directory);
        faults.SetRoom(0);
        EXPECT_EQ(change.make(), change.needsRoom ? StoreResult::VolumeFull : StoreResult::Done);
        EXPECT_EQ(stores.Content().at(change.file), change.needsRoom ? before.at(change.file) : change.after)
            << change.what;
        while (inbox.Count() > 0)
            ASSERT_EQ(inbox.Delete(inbox.FindSmsRecord(), 0), StoreResult::Done) << "one by one";
    }
}

TEST_F(DiskFaults, TheReserveIsAsLargeAsTheLargestFileNeeds) {
    const std::string path = "NandFlash\\System\\Phone\\dialcall.msm";
    const std::string large(150'000, 'd');
    EXPECT_TRUE(stores.files.WriteWhole(path, large));
    EXPECT_TRUE(stores.files.WriteWhole("NandFlash\\System\\Phone\\small", "123"));
    DiskDouble faults(stores.directory);
    faults.SetRoom(0);
    EXPECT_FALSE(stores.files.WriteWhole(path, large + "d")) << "longer than before";
    EXPECT_TRUE(stores.files.WriteWhole("NandFlash\\System\\Phone\\small", "12"));
    EXPECT_TRUE(stores.files.WriteWhole(path, large.substr(100)));
    EXPECT_EQ(FileContent(stores.directory + "/dialcall.msm"), large.substr(100));
}

}  // namespace
}  // namespace varkel::test
