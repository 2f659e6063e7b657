#include "stores/message_box.h"

#include <gtest/gtest.h>

#include "tests/stores/box_fixture.h"
#include "tests/support/memory_files.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

const std::string inbox = "NandFlash\\System\\Phone\\InboxMs.msm";

class MessageBoxTest : public testing::Test {
  protected:
    // What the box holds, by the numbers of the messages.
    std::vector<int> Numbers() {
        std::vector<int> numbers;
        for (const SmsRecord& record : boxes.inbox.FindSmsRecord())
            numbers.push_back(std::stoi(std::string(record.szContent.View().substr(8))));
        return numbers;
    }

    VirtualRuntime runtime{1};
    MemoryFiles files;
    Log log{runtime, files};
    MessageBoxes boxes{files, log};
};

TEST_F(MessageBoxTest, ARecordIsItsFieldsInARow) {
    const SmsRecord record = MakeSmsRecord(SmsTime("2009-03-07 18:05"), "12345", "Hello", SmsState::Unread);
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(record), StoreResult::Done);
    const std::string bytes = files.Content(inbox);
    ASSERT_EQ(bytes.size(), 194u);
    EXPECT_EQ(bytes.substr(0, 21), "2009-03-07 18:0512345") << "no NUL behind the time";
    EXPECT_EQ(bytes.substr(21, 11), std::string(11, '\0'));
    EXPECT_EQ(bytes.substr(32, 5), "Hello");
    EXPECT_EQ(bytes.substr(37), std::string(156, '\0') + 'u');
    EXPECT_EQ(boxes.inbox.FindSmsRecord()[0].szTime.View(), "2009-03-07 18:05");

    const SmsRecord full =
        MakeSmsRecord(record.szTime, std::string(99, '7'), std::string(999, 'x'), SmsState::Opened);
    EXPECT_EQ(full.szPhoneNo.View(), std::string(15, '7'));
    EXPECT_EQ(full.szContent.View(), std::string(160, 'x'));
    // From elsewhere: no field has its NUL, and none runs into the next.
    const std::string foreign = std::string(16, 't') + std::string(16, 'n') + std::string(161, 'c') + '?';
    files.WriteWhole(inbox, foreign);
    const SmsRecord read = boxes.inbox.FindSmsRecord().at(0);
    EXPECT_EQ(read.szPhoneNo.View(), std::string(16, 'n'));
    EXPECT_EQ(read.szContent.View(), std::string(161, 'c'));
    EXPECT_EQ(boxes.inbox.UnreadCount(), 0u);
}

TEST_F(MessageBoxTest, EachBoxIsAFileOfItsOwn) {
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Done);
    EXPECT_EQ(boxes.outbox.WriteSmsRecord(Message(2)), StoreResult::Done);
    EXPECT_EQ(boxes.drafts.WriteSmsRecord(Message(3)), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox), BytesOf({Message(1)}));
    EXPECT_EQ(files.Content("NandFlash\\System\\Phone\\OutboxMs.msm"), BytesOf({Message(2)}));
    EXPECT_EQ(files.Content("NandFlash\\System\\Phone\\DraftsMs.msm"), BytesOf({Message(3)}));
}

TEST_F(MessageBoxTest, TimeIsSixteenCharacters) {
    const std::pair<const char*, const char*> stamps[] = {
        {"09030718054532", "2009-03-07 18:05"}, {"99123123595900", "2099-12-31 23:59"},
        {"0903", "2009-03-00 00:00"},           {"", "2000-00-00 00:00"},
        {"09A30B718C0545", "2009-30-71 80:54"},
    };
    for (const auto& [stamp, text] : stamps)
        EXPECT_EQ(SmsTimeFromStamp(stamp).View(), text) << stamp;
    EXPECT_EQ(SmsTimeFromLocal({2009, 3, 7, 8, 5, 59}).View(), "2009-03-07 08:05");
    EXPECT_EQ(SmsTimeFromLocal({-2147483647, -2147483647, 1, 1, 1, 1}).View().size(), 16u);
}

TEST_F(MessageBoxTest, KeepsTheNewest150) {
    files.WriteWhole(inbox, BytesOf(Messages(1, 150)));
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(151)), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox), BytesOf(Messages(2, 151)));
    files.WriteWhole(inbox, BytesOf(Messages(1, 160)));
    const auto list = boxes.inbox.FindSmsRecord();
    EXPECT_EQ(list.size(), 160u) << "only a write trims";
    EXPECT_EQ(boxes.inbox.MarkRead(list, 159), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox), BytesOf(Messages(11, 160)));
}

TEST_F(MessageBoxTest, LeavesOutATornTail) {
    files.WriteWhole(inbox, BytesOf({Message(1)}) + "torn!!");
    EXPECT_EQ(Numbers(), std::vector{1});
    EXPECT_EQ(boxes.inbox.MarkRead(boxes.inbox.FindSmsRecord(), 0), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox).size(), 194u);
    files.WriteWhole(inbox, "torn");
    EXPECT_EQ(boxes.inbox.DeleteAll(), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox), "");
}

TEST_F(MessageBoxTest, DeletesTheRowThatWasSeen) {
    files.WriteWhole(inbox, BytesOf(Messages(1, 3)));
    const auto shown = boxes.inbox.FindSmsRecord();
    ASSERT_EQ(AtRow(shown, 3), nullptr);
    EXPECT_EQ(boxes.inbox.Delete(shown, 3), StoreResult::NotFound);
    EXPECT_EQ(boxes.inbox.Delete(shown, 0), StoreResult::Done);
    EXPECT_EQ(Numbers(), (std::vector{1, 2}));
    // The list on the screen grows old: messages arrive, one is read, others are deleted.
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(4)), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.MarkRead(boxes.inbox.FindSmsRecord(), 1), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.Delete(shown, 0), StoreResult::NotFound) << "it is gone, and no other one for it";
    EXPECT_EQ(boxes.inbox.Delete(shown, 1), StoreResult::Done) << "marked read since";
    EXPECT_EQ(Numbers(), (std::vector{1, 4}));
    EXPECT_EQ(boxes.inbox.DeleteAll(), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.Delete(shown, 2), StoreResult::NotFound);
    EXPECT_EQ(files.Content(inbox), "");
}

TEST_F(MessageBoxTest, OfMessagesThatLookAlikeTheOneNearestToItsPlaceIsMeant) {
    const auto deleted = [&](std::size_t row, int deletedBefore) {
        MessageBox::List list{Message(1), Message(2), Message(1), Message(3), Message(1)};
        files.WriteWhole(inbox, BytesOf(list));
        list = boxes.inbox.FindSmsRecord();
        for (int i = 0; i < deletedBefore; ++i)
            EXPECT_EQ(boxes.inbox.Delete(boxes.inbox.FindSmsRecord(), 4 - static_cast<std::size_t>(i)),
                      StoreResult::Done);
        EXPECT_EQ(boxes.inbox.Delete(list, row), StoreResult::Done);
        return Numbers();
    };
    EXPECT_EQ(deleted(0, 0), (std::vector{1, 2, 1, 3}));
    EXPECT_EQ(deleted(2, 0), (std::vector{1, 2, 3, 1}));
    EXPECT_EQ(deleted(4, 0), (std::vector{2, 1, 3, 1}));
    EXPECT_EQ(deleted(0, 1), (std::vector{2, 1, 3}));
    EXPECT_EQ(deleted(0, 2), (std::vector{1, 3}));
}

TEST_F(MessageBoxTest, OnlyAnUnreadMessageOfTheInboxIsMarked) {
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(2)), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.UnreadCount(), 2u);
    const auto shown = boxes.inbox.FindSmsRecord();
    EXPECT_EQ(boxes.inbox.MarkRead(shown, 0), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox), BytesOf({Message(1), Message(2, SmsState::Opened)}));
    const int writes = files.writes;
    EXPECT_EQ(boxes.inbox.MarkRead(shown, 0), StoreResult::Done) << "read already";
    EXPECT_EQ(files.writes, writes) << "so nothing is written";
    EXPECT_EQ(boxes.drafts.WriteSmsRecord(Message(3)), StoreResult::Done);
    EXPECT_EQ(boxes.drafts.MarkRead(boxes.drafts.FindSmsRecord(), 0), StoreResult::Done);
    EXPECT_EQ(boxes.drafts.UnreadCount(), 1u);
}

TEST_F(MessageBoxTest, AsksForAMebibyteBeforeItAppends) {
    const std::pair<std::uint64_t, StoreResult> cases[] = {
        {0, StoreResult::VolumeFull},
        {(1u << 20) - 1, StoreResult::VolumeFull},
        {1u << 20, StoreResult::Done},
        {0xFFFFFFFF, StoreResult::Done},
        {(std::uint64_t{1} << 32) + 100, StoreResult::VolumeFull},  // only the low 32 bits count
    };
    for (const auto& [freeBytes, result] : cases) {
        files.freeBytes = 1 << 20;
        files.WriteWhole(inbox, BytesOf(Messages(1, 2)));
        files.freeBytes = freeBytes;
        EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(3)), result) << freeBytes;
        EXPECT_EQ(Numbers().size(), result == StoreResult::Done ? 3u : 2u) << freeBytes;
        EXPECT_EQ(boxes.inbox.MarkRead(boxes.inbox.FindSmsRecord(), 0), StoreResult::Done);
        EXPECT_EQ(boxes.inbox.Delete(boxes.inbox.FindSmsRecord(), 0), StoreResult::Done);
        EXPECT_EQ(boxes.inbox.DeleteAll(), StoreResult::Done);
    }
}

TEST_F(MessageBoxTest, NeverWritesOverWhatItCannotRead) {
    log.Open("log", 10'000, LogLevel::Trace);
    files.WriteWhole(inbox, BytesOf(Messages(1, 2)));
    const auto shown = boxes.inbox.FindSmsRecord();
    files.refuseToRead = true;
    EXPECT_EQ(boxes.inbox.FindSmsRecord().size(), 0u);
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(3)), StoreResult::Unreadable);
    EXPECT_EQ(boxes.inbox.Delete(shown, 0), StoreResult::Unreadable);
    EXPECT_EQ(boxes.inbox.DeleteAll(), StoreResult::Unreadable);
    files.refuseToRead = false;
    EXPECT_EQ(Numbers(), (std::vector{1, 2}));
    files.refuseToWrite = true;
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(3)), StoreResult::WriteFailed);
    const std::string lines = files.Content("log.ini");
    EXPECT_NE(lines.find("[StoreFile]--NandFlash\\System\\Phone\\InboxMs.msm cannot be read\n"),
              std::string::npos)
        << lines;
    EXPECT_NE(lines.find("InboxMs.msm cannot be written\n"), std::string::npos) << lines;
}

TEST_F(MessageBoxTest, SetsAsideAFileThatIsFarTooLarge) {
    const std::string large(StoreFile::largestFile + 1, 'x');
    files.WriteWhole(inbox, large);
    EXPECT_EQ(boxes.inbox.Count(), 0u);
    EXPECT_EQ(files.Content(inbox).size(), large.size()) << "looking at it changes nothing";
    files.refuseToWrite = true;
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Unreadable);
    files.refuseToWrite = false;
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Done);
    EXPECT_EQ(Numbers(), std::vector{1});
    EXPECT_EQ(files.Content(inbox + ".old"), large);
}

TEST(MessageBoxOnDisk, MakesItsDirectories) {
    BoxesOnDisk disk;
    std::filesystem::remove_all(disk.scratch / "flash/NandFlash");
    EXPECT_EQ(disk.boxes.inbox.Count(), 0u);
    EXPECT_EQ(disk.boxes.inbox.DeleteAll(), StoreResult::Done) << "nothing to delete";
    EXPECT_EQ(disk.boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Done);
    EXPECT_EQ(FileContent(disk.directory + "/InboxMs.msm"), BytesOf({Message(1)}));
}

}  // namespace
}  // namespace varkel::test
