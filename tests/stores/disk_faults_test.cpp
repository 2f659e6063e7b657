// Every call to the system fails in its turn, once or from then on.
#include <cerrno>
#include <functional>
#include <gtest/gtest.h>

#include "tests/stores/box_fixture.h"
#include "tests/stores/disk_double.h"

namespace varkel::test {
namespace {

struct Operation {
    const char* name;
    std::function<StoreResult(MessageBox&, const MessageBox::List&)> run;
    MessageBox::List after;
};

const MessageBox::List before = Messages(1, 10);

std::vector<Operation> Operations() {
    MessageBox::List appended = Messages(1, 11);
    MessageBox::List deleted = before;
    deleted.erase(deleted.begin() + 7);
    MessageBox::List marked = before;
    marked[7].Index = SmsState::Opened;
    using List = MessageBox::List;
    return {
        {"append", [](MessageBox& box, const List&) { return box.WriteSmsRecord(Message(11)); }, appended},
        {"delete", [](MessageBox& box, const List& shown) { return box.Delete(shown, 2); }, deleted},
        {"mark read", [](MessageBox& box, const List& shown) { return box.MarkRead(shown, 2); }, marked},
        {"delete all", [](MessageBox& box, const List&) { return box.DeleteAll(); }, {}},
    };
}

class DiskFaults : public testing::Test {
  protected:
    // Runs the operation with the fault; false when the operation ended before the faulty call.
    bool Run(const Operation& operation, DiskFault fault, bool reserve) {
        SCOPED_TRACE(testing::Message() << operation.name << ", call " << fault.first << " fails with "
                                        << fault.error << (fault.forEver ? " for ever" : " once")
                                        << (reserve ? ", with reserve" : ", without reserve"));
        // A box whose name is spelt otherwise is found by listing the directory.
        const std::string name = reserve ? "InboxMs.msm" : "INBOXMS.MSM";
        std::map<std::string, std::string> content{{name, BytesOf(before)}, {"OutboxMs.msm", "other"}};
        if (reserve) content["reserve~"] = std::string(64 * 1024, '\0');
        disk.Put(content);
        const auto descriptors = OpenDescriptors();
        int calls = 0;
        {
            DiskDouble faults(disk.directory);
            faults.Fail(fault);
            const StoreResult result = operation.run(box, before);
            calls = faults.Calls();
            faults.Fail({});
            Judge(result, box.FindSmsRecord(), operation);
        }
        EXPECT_EQ(OpenDescriptors(), descriptors);
        EXPECT_EQ(FileContent(disk.directory + "/OutboxMs.msm"), "other");
        for (const auto& [left, bytes] : disk.Content())
            EXPECT_TRUE(content.contains(left) || left.ends_with('~')) << left;
        MessageBox::List list = box.FindSmsRecord();
        list.push_back(Message(12));
        EXPECT_EQ(box.WriteSmsRecord(Message(12)), StoreResult::Done) << "the next one works";
        EXPECT_EQ(BytesOf(box.FindSmsRecord()), BytesOf(list));
        return calls >= fault.first;
    }

    static void Judge(StoreResult result, const MessageBox::List& list, const Operation& operation) {
        const bool isOld = BytesOf(list) == BytesOf(before);
        const bool isNew = BytesOf(list) == BytesOf(operation.after);
        switch (result) {
            case StoreResult::Done: EXPECT_TRUE(isNew); break;
            // When it is only the directory that was not synced, the new list stands there.
            case StoreResult::WriteFailed: EXPECT_TRUE(isOld || isNew); break;
            case StoreResult::Unreadable: EXPECT_TRUE(isOld); break;
            default: ADD_FAILURE() << "result " << static_cast<int>(result); break;
        }
    }

    void FailEveryCall(int error, bool forEver) {
        for (const Operation& operation : Operations()) {
            for (const bool reserve : {false, true}) {
                int call = 1;
                while (Run(operation, {call, forEver, error}, reserve) && !HasFailure())
                    ++call;
                EXPECT_GT(call, 20) << "so many calls make an update";
            }
        }
    }

    BoxesOnDisk disk;
    MessageBox& box = disk.boxes.inbox;
};

TEST_F(DiskFaults, OfOneCallLeaveOldOrNewList) {
    for (const int error : {EIO, ENOSPC, EINTR, 0})
        FailEveryCall(error, false);
}

TEST_F(DiskFaults, FromOneCallOnLeaveOldOrNewList) {
    for (const int error : {EIO, ENOSPC, 0})
        FailEveryCall(error, true);
}

// The other stores' changes, which take the same way to the disk.
TEST_F(DiskFaults, LeaveTheOtherListsAsTheyWereOrAsMeant) {
    const std::vector<CallRecord> calls{Call(1), Call(2), Call(3)};
    const std::vector<PhoneBookRecord> phones{Phone(1), Phone(2), Phone(3)};
    const std::vector<ISP_Struct> isps{Isp(1), Isp(2), Isp(3)};
    const struct {
        const char* file;
        std::function<StoreResult()> run;
        std::string after;
    } changes[] = {
        {"missedcall.msm", [&] { return disk.calls.missed.WriteCallRecord(Call(4)); },
         BytesOf(std::vector{Call(1), Call(2), Call(3), Call(4)})},
        {"missedcall.msm", [&] { return disk.calls.missed.Delete(calls, 0); },
         BytesOf(std::vector{Call(1), Call(2)})},
        {"phonebook.msm", [&] { return disk.phones.Add(Phone(4)); },
         BytesOf(std::vector{Phone(1), Phone(2), Phone(3), Phone(4)})},
        {"phonebook.msm", [&] { return disk.phones.Change(Phone(2), 1, Phone(5)); },
         BytesOf(std::vector{Phone(1), Phone(5), Phone(3)})},
        {"phonebook.msm", [&] { return disk.phones.Delete(Phone(2), 1); },
         BytesOf(std::vector{Phone(1), Phone(3)})},
        {"ISPDest.dat", [&] { return disk.isps.Add(Isp(4)); },
         BytesOf(std::vector{Isp(4), Isp(1), Isp(2), Isp(3)})},
        {"ISPDest.dat", [&] { return disk.isps.Change(Isp(2), 1, Isp(5)); },
         BytesOf(std::vector{Isp(1), Isp(5), Isp(3)})},
        {"ISPDest.dat", [&] { return disk.isps.Delete(Isp(2), 1); }, BytesOf(std::vector{Isp(1), Isp(3)})},
    };
    for (const auto& change : changes) {
        int call = 1;
        for (bool reached = true; reached && !HasFailure(); ++call) {
            disk.Put({{"missedcall.msm", BytesOf(calls)},
                      {"phonebook.msm", BytesOf(phones)},
                      {"ISPDest.dat", BytesOf(isps)}});
            const std::string old = FileContent(disk.directory + "/" + change.file);
            DiskDouble faults(disk.directory);
            faults.Fail({call, call % 2 == 0, call % 3 == 0 ? 0 : EIO});
            const StoreResult result = change.run();
            reached = faults.Calls() >= call;
            faults.Fail({});
            const std::string left = FileContent(disk.directory + "/" + change.file);
            if (result == StoreResult::Done) {
                EXPECT_EQ(left, change.after) << change.file << ", call " << call;
            }
            EXPECT_TRUE(left == old || left == change.after) << change.file << ", call " << call;
        }
        EXPECT_GT(call, 20) << change.file;
    }
}

// A copy that fails leaves no list or a whole one, and the next look makes it.
TEST_F(DiskFaults, OfTheCopyOfTheUnitsOperatorsLeaveNoneOrAll) {
    const std::string factory = BytesOf(std::vector{Isp(1), Isp(2), Isp(3)});
    std::filesystem::create_directories(disk.scratch / "assets/ResidentFlash2/bin/Gprs");
    WriteFile(disk.scratch / "assets/ResidentFlash2/bin/Gprs/ISPDest.dat", factory);
    int call = 1;
    for (bool reached = true; reached && !HasFailure(); ++call) {
        disk.Put({});
        DiskDouble faults(disk.directory);
        faults.Fail({call, call % 2 == 0, call % 3 == 0 ? 0 : EIO});
        const auto list = disk.isps.Load();
        reached = faults.Calls() >= call;
        faults.Fail({});
        EXPECT_TRUE(list.empty() || BytesOf(list) == factory) << "call " << call;
        EXPECT_EQ(BytesOf(disk.isps.Load()), factory) << "call " << call;
    }
    EXPECT_GT(call, 20);
}

// Whatever fails while it is read, an existing box is never taken for a missing one and written over.
TEST_F(DiskFaults, OnReadingGiveTheListOrNone) {
    disk.Put({{"InboxMs.msm", BytesOf(before)}});
    bool reached = true;
    for (int call = 1; reached; ++call) {
        DiskDouble faults(disk.directory);
        faults.Fail({call, false, EIO});
        const MessageBox::List list = box.FindSmsRecord();
        reached = faults.Calls() >= call;
        EXPECT_TRUE(list.empty() || BytesOf(list) == BytesOf(before)) << "call " << call;
    }
}

TEST_F(DiskFaults, WithoutAnyRoomOnlyAppendingFails) {
    for (const Operation& operation : Operations()) {
        disk.Put({{"InboxMs.msm", BytesOf(before)}});
        EXPECT_EQ(box.WriteSmsRecord(Message(12)), StoreResult::Done) << "makes the reserve";
        EXPECT_EQ(box.Delete(box.FindSmsRecord(), 0), StoreResult::Done);
        DiskDouble faults(disk.directory);
        faults.SetRoom(0);
        const bool append = operation.name == std::string("append");
        EXPECT_EQ(operation.run(box, before), append ? StoreResult::VolumeFull : StoreResult::Done);
        EXPECT_EQ(BytesOf(box.FindSmsRecord()), BytesOf(append ? before : operation.after)) << operation.name;
        while (box.Count() > 0)
            ASSERT_EQ(box.Delete(box.FindSmsRecord(), 0), StoreResult::Done) << "one by one";
    }
}

TEST_F(DiskFaults, TheReserveIsAsLargeAsTheLargestFileNeeds) {
    const std::string path = "NandFlash\\System\\Phone\\dialcall.msm";
    const std::string large(150'000, 'd');
    EXPECT_TRUE(disk.files.WriteWhole(path, large));
    EXPECT_TRUE(disk.files.WriteWhole("NandFlash\\System\\Phone\\small", "123"));
    DiskDouble faults(disk.directory);
    faults.SetRoom(0);
    EXPECT_FALSE(disk.files.WriteWhole(path, large + "d")) << "longer than before";
    EXPECT_TRUE(disk.files.WriteWhole("NandFlash\\System\\Phone\\small", "12"));
    EXPECT_TRUE(disk.files.WriteWhole(path, large.substr(100)));
    EXPECT_EQ(FileContent(disk.directory + "/dialcall.msm"), large.substr(100));
}

}  // namespace
}  // namespace varkel::test
