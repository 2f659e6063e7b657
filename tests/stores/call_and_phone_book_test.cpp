// The call lists and the local phonebook: their files, byte for byte, and what is found in them.
#include <gtest/gtest.h>

#include "tests/stores/box_fixture.h"
#include "tests/support/memory_files.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

const std::string dialled = "NandFlash\\System\\Phone\\dialcall.msm";
const std::string phoneBook = "NandFlash\\System\\Phone\\phonebook.msm";

struct OtherStores : testing::Test {
    VirtualRuntime runtime{1};
    MemoryFiles files;
    Log log{runtime, files};
    CallLists calls{files, log};
    PhoneBookFile phones{files, log};
};

TEST_F(OtherStores, ACallIsItsFieldsInARow) {
    const std::string number(45, '7');
    const CallRecord record = MakeCallRecord({2009, 3, 7, 8, 5, 9}, std::string(40, 'n'), number);
    EXPECT_EQ(calls.dialled.WriteCallRecord(record), StoreResult::Done);
    EXPECT_EQ(files.Content(dialled),
              std::string("2009-03-07\00008:05:09\0", 20) + std::string(40, 'n') + std::string(40, '7'));
    EXPECT_EQ(calls.dialled.NewestNumber(), number.substr(0, 40)) << "no NUL behind it";
    EXPECT_EQ(MakeCallRecord({-2147483647, -9999999, 3, 4, 5, 1000000000}, "", "").date.View().size(), 10u);

    EXPECT_EQ(calls.received.WriteCallRecord(Call(1)), StoreResult::Done);
    EXPECT_EQ(calls.missed.WriteCallRecord(Call(2)), StoreResult::Done);
    EXPECT_EQ(files.Content("NandFlash\\System\\Phone\\receivecall.msm"), BytesOf(std::vector{Call(1)}));
    EXPECT_EQ(files.Content("NandFlash\\System\\Phone\\missedcall.msm"), BytesOf(std::vector{Call(2)}));
}

TEST_F(OtherStores, EveryCallIsKeptUntilItIsDeleted) {
    EXPECT_EQ(calls.dialled.NewestNumber(), "");
    for (int i = 0; i < 600; ++i)
        ASSERT_EQ(calls.dialled.WriteCallRecord(Call(i / 3)), StoreResult::Done);
    files.WriteWhole(dialled, files.Content(dialled) + std::string(99, 't'));
    const auto shown = calls.dialled.FindCallRecord();
    ASSERT_EQ(shown.size(), 600u) << "a tail is no record";
    files.freeBytes = (1 << 20) - 1;
    EXPECT_EQ(calls.dialled.WriteCallRecord(Call(1)), StoreResult::VolumeFull);
    EXPECT_EQ(calls.dialled.Delete(shown, 0), StoreResult::Done);
    EXPECT_EQ(calls.dialled.Delete(shown, 1), StoreResult::Done) << "the other two look the same";
    EXPECT_EQ(calls.dialled.NewestNumber(), "13800138199");
    EXPECT_EQ(calls.dialled.Delete(shown, 600), StoreResult::NotFound);
    EXPECT_EQ(calls.dialled.DeleteAll(), StoreResult::Done);
    EXPECT_EQ(files.Content(dialled), "");
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
    for (int i = 1; i <= 3; ++i)
        ASSERT_EQ(phones.Add(Phone(i)), StoreResult::Done);
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
    log.Open("log", 10'000, LogLevel::Trace);
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(phones.Add(Phone(i)), StoreResult::Done);
    EXPECT_EQ(phones.Delete(Phone(1), 1), StoreResult::Done);
    EXPECT_EQ(phones.Delete(Phone(1), 1), StoreResult::NotFound);
    EXPECT_EQ(phones.Change(Phone(3), 3, Phone(9)), StoreResult::Done) << "it has moved up";
    EXPECT_EQ(phones.Change(Phone(3), 2, Phone(8)), StoreResult::NotFound);
    EXPECT_EQ(files.Content(phoneBook), BytesOf(std::vector{Phone(0), Phone(2), Phone(9), Phone(4)}));
    files.freeBytes = 0;
    EXPECT_EQ(phones.Add(Phone(7)), StoreResult::VolumeFull);
    EXPECT_EQ(phones.Change(Phone(0), 0, Phone(7)), StoreResult::VolumeFull);
    EXPECT_EQ(phones.Delete(Phone(0), 0), StoreResult::Done);
    const std::string lines = files.Content("log.ini");
    EXPECT_NE(lines.find("OpenPhoneBookFile--begin\r\n"), std::string::npos);
    EXPECT_NE(lines.find("CloseFile--begin\r\n"), std::string::npos);
}

}  // namespace
}  // namespace varkel::test
