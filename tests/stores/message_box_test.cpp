#include "stores/message_box.h"

#include <gtest/gtest.h>

#include "tests/stores/stores_fixture.h"

namespace varkel::test {
namespace {

const std::string inbox = "NandFlash\\System\\Phone\\InboxMs.msm";

struct MessageBoxTest : testing::Test, StoresInMemory {};

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
    files.WriteWhole(inbox, BytesOf(Several(Message, 1, 150)));
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(151)), StoreResult::Done);
    EXPECT_EQ(files.Content(inbox), BytesOf(Several(Message, 2, 151)));
}

// What else changes do to an inbox, fuzz/record_file_fuzz.cpp compares with rules of its own.
TEST_F(MessageBoxTest, OnlyAnUnreadMessageOfTheInboxIsMarked) {
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(2)), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.UnreadCount(), 2u);
    const auto shown = boxes.inbox.FindSmsRecord();
    EXPECT_EQ(boxes.inbox.MarkRead(shown, 0), StoreResult::Done);
    EXPECT_EQ(boxes.inbox.UnreadCount(), 1u);
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
        files.freeBytes = freeBytes;
        EXPECT_EQ(boxes.inbox.WriteSmsRecord(Message(3)), result) << freeBytes;
    }
    EXPECT_EQ(boxes.inbox.Count(), 2u);
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
    EXPECT_EQ(files.Content(inbox), BytesOf(Several(Message, 1, 1)));
    EXPECT_EQ(files.Content(inbox + ".old"), large);
}

TEST(MessageBoxOnDisk, MakesItsDirectories) {
    StoresOnDisk disk;
    std::filesystem::remove_all(disk.scratch / "flash/NandFlash");
    EXPECT_EQ(disk.boxes.inbox.Count(), 0u);
    EXPECT_EQ(disk.boxes.inbox.DeleteAll(), StoreResult::Done) << "nothing to delete";
    EXPECT_EQ(disk.boxes.inbox.WriteSmsRecord(Message(1)), StoreResult::Done);
    EXPECT_EQ(FileContent(disk.directory + "/InboxMs.msm"), BytesOf(Several(Message, 1, 1)));
}

}  // namespace
}  // namespace varkel::test
