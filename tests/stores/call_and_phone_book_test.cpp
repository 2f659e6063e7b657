// The call lists and the local phonebook: their files, byte for byte, and what is found in them.
#include <gtest/gtest.h>

#include "tests/stores/stores_fixture.h"

namespace varkel::test {
namespace {

const std::string dialled = "NandFlash\\System\\Phone\\dialcall.msm";
const std::string phoneBook = "NandFlash\\System\\Phone\\phonebook.msm";

struct OtherStores : testing::Test, StoresInMemory {};

TEST_F(OtherStores, ACallIsItsFieldsInARow) {
    const std::string number(45, '7');
    const CallRecord record = MakeCallRecord({2009, 3, 7, 8, 5, 9}, std::string(40, 'n'), number);
    EXPECT_EQ(calls.dialled.WriteCallRecord(record), StoreResult::Done);
    EXPECT_EQ(files.Content(dialled),
              std::string("2009-03-07\00008:05:09\0", 20) + std::string(40, 'n') + std::string(40, '7'));
    EXPECT_EQ(calls.dialled.NewestNumber(), number.substr(0, 40)) << "no NUL behind it";
    EXPECT_EQ(MakeCallRecord({-2147483647, -9999999, 3, 4, 5, 1000000000}, "", "").date.View().size(), 10u);
}

TEST_F(OtherStores, EachListIsAFileOfItsOwn) {
    const std::string directory = "NandFlash\\System\\Phone\\";
    const std::pair<const char*, MessageBox&> messageFiles[] = {
        {"InboxMs.msm", boxes.inbox}, {"OutboxMs.msm", boxes.outbox}, {"DraftsMs.msm", boxes.drafts}};
    const std::pair<const char*, CallList&> callFiles[] = {{"dialcall.msm", calls.dialled},
                                                           {"receivecall.msm", calls.received},
                                                           {"missedcall.msm", calls.missed}};
    int number = 0;
    for (const auto& [file, box] : messageFiles) {
        EXPECT_EQ(box.WriteSmsRecord(Message(++number)), StoreResult::Done);
        EXPECT_EQ(files.Content(directory + file), BytesOf(Several(Message, number, number)));
    }
    for (const auto& [file, list] : callFiles) {
        EXPECT_EQ(list.WriteCallRecord(Call(++number)), StoreResult::Done);
        EXPECT_EQ(files.Content(directory + file), BytesOf(Several(Call, number, number)));
    }
}

TEST_F(OtherStores, EveryCallIsKeptUntilItIsDeleted) {
    EXPECT_EQ(calls.dialled.NewestNumber(), "");
    for (int i = 0; i < 600; ++i)
        ASSERT_EQ(calls.dialled.WriteCallRecord(Call(i / 3)), StoreResult::Done);
    const auto shown = calls.dialled.FindCallRecord();
    ASSERT_EQ(shown.size(), 600u);
    EXPECT_EQ(calls.dialled.Delete(shown, 0), StoreResult::Done);
    EXPECT_EQ(calls.dialled.Delete(shown, 1), StoreResult::Done) << "the other two look the same";
    EXPECT_EQ(calls.dialled.NewestNumber(), "13800138199");
    EXPECT_EQ(calls.dialled.Delete(shown, 600), StoreResult::NotFound);
}

TEST_F(OtherStores, APhoneEntryIsFiveTextsOfSixtyBytes) {
    PhoneBookRecord record;
    record.name.Assign("Anna");
    for (std::size_t i = 0; i < 4; ++i)
        record.numbers[i].Assign("10" + std::to_string(i));
    EXPECT_EQ(phones.Add(record), StoreResult::Done);
    std::string expected;
    for (const char* text : {"Anna", "100", "101", "102", "103"})
        expected += std::string(text) + std::string(60 - std::string_view(text).size(), '\0');
    EXPECT_EQ(files.Content(phoneBook), expected);
    // From elsewhere, without a single NUL, and with a torn tail.
    files.WriteWhole(phoneBook, std::string(60, 'n') + std::string(60, '1') + std::string(180, '2') + "torn");
    EXPECT_EQ(phones.Load().size(), 1u);
    EXPECT_EQ(phones.FindName(std::string(60, '2')), std::string(60, 'n'));
    EXPECT_EQ(phones.FindName(std::string(59, '2')), std::nullopt);
}

TEST_F(OtherStores, TheFirstRecordWithTheWholeNumberGivesTheName) {
    EXPECT_EQ(phones.FindName("1"), std::nullopt);
    files.WriteWhole(phoneBook, BytesOf(Several(Phone, 1, 3)));
    PhoneBookRecord later = Phone(4);
    later.numbers[3].Assign("13800138002");
    later.numbers[2].Assign("12a");
    ASSERT_EQ(phones.Add(later), StoreResult::Done);
    const std::pair<const char*, const char*> cases[] = {
        {"13800138001", "name 1"}, {"13800138002", "name 2"}, {"13800138004", "name 4"}, {"12a", "name 4"},
        {"12A", nullptr},          {"1380013800", nullptr},   {"+13800138001", nullptr}, {"", nullptr},
    };
    for (const auto& [number, name] : cases)
        EXPECT_EQ(phones.FindName(number), name ? std::optional<std::string>(name) : std::nullopt) << number;
}

TEST_F(OtherStores, AChangeMeansTheRecordThatWasSeen) {
    files.WriteWhole(phoneBook, BytesOf(Several(Phone, 0, 4)));
    EXPECT_EQ(phones.Delete(Phone(1), 1), StoreResult::Done);
    EXPECT_EQ(phones.Delete(Phone(1), 1), StoreResult::NotFound);
    EXPECT_EQ(phones.Change(Phone(3), 3, Phone(9)), StoreResult::Done) << "it has moved up";
    EXPECT_EQ(phones.Change(Phone(3), 2, Phone(8)), StoreResult::NotFound);
    EXPECT_EQ(phones.Change(Phone(4), 0, Phone(5)), StoreResult::Done) << "it has moved down";
    EXPECT_EQ(files.Content(phoneBook), BytesOf(std::vector{Phone(0), Phone(2), Phone(9), Phone(5)}));
}

}  // namespace
}  // namespace varkel::test
