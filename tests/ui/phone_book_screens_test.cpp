// The phonebook's screens and the call records.
#include <gmock/gmock.h>

#include "tests/ui/screen_test.h"
#include "ui/screens/call_records_dlg.h"
#include "ui/screens/contact_dlg.h"
#include "ui/screens/edit_contact_dlg.h"
#include "ui/screens/phone_book_dlg.h"

namespace varkel::test {
namespace {

constexpr int deleteIds[] = {1079, 1033, 1034};
constexpr int newId = 1061, saveId = 1060, numbersId = 1030, exitId = 1075;
constexpr Point callButton{700, 110}, deleteButton{700, 330}, receivedTab{300, 90}, dialledTab{500, 90};
constexpr Point nameField{400, 100}, numberField{400, 186}, searchField{300, 90}, deleteAll{440, 291};

struct PhoneScreens : ScreenTest {
    CallLists& Lists() { return dialog->Calls().Lists(); }
    void Put(CallList& list, std::string_view number, std::string_view name = "") {
        const CallRecord record =
            MakeCallRecord({.year = 2009, .month = 3, .day = 7, .hour = 18, .minute = 5}, name, number);
        ASSERT_EQ(list.WriteCallRecord(record), StoreResult::Done);
    }
    // "name number " of each, oldest first.
    static std::string Shown(CallList& list) {
        std::string all;
        for (const CallRecord& record : list.FindCallRecord())
            all.append(record.name.View()).append(record.number.View()).append(" ");
        return all;
    }
    void Add(PhoneText text) {
        std::optional<PhoneBookResult> result;
        dialog->Phones().Add(PhoneBookKind::Local, std::move(text),
                             [&](PhoneBookResult done) { result = done; });
        ASSERT_TRUE(RunUntil([&] { return result == PhoneBookResult::Done; }, 20'000));
    }
    // "name:number,number " of each.
    std::string Entries() {
        std::string all;
        for (const PhoneEntry& entry : dialog->Phones().Find(PhoneBooks::Both, ""))
            all += entry.text.name + ":" + entry.text.numbers[0] + "," + entry.text.numbers[1] + " ";
        return all;
    }
};

struct CallRecordsScreen : PhoneScreens {
    CCallRecordsDlg screen{*context};
};

TEST_F(CallRecordsScreen, ShowsOneListAndOnlyItsDeleteButton) {
    Put(Lists().missed, "1");
    Put(Lists().received, "2");
    Put(Lists().received, "3");
    Open(screen);
    const auto shown = [&] {
        std::string ids;
        for (const int id : deleteIds)
            ids += Visible(screen, id) ? "+" : "-";
        return Counter(screen) + ids;
    };
    EXPECT_EQ(shown(), "1/1+--");
    Play({Tap(receivedTab)});
    EXPECT_EQ(shown(), "1/2-+-");
    Play({Tap(dialledTab), Tap(deleteButton)});
    EXPECT_EQ(shown(), "0/0--+") << "and nothing to delete";
    screen.Click(1027);
    EXPECT_EQ(shown(), "1/1+--");
}

TEST_F(CallRecordsScreen, CallsBackUnderTheNameOfTheRecordUnlessTheSupplyIsLow) {
    OpenModule();
    ForgetRecords();
    Put(Lists().missed, "10010", "Bob");
    Put(Lists().missed, "");
    Open(screen);
    Play({Tap(callButton)});
    EXPECT_EQ(screens.Count("warn 5"), 0) << "a call without a number";
    unit.Command("power 19");
    Play({Press(KeyCode::Down), Tap(callButton)});
    EXPECT_EQ(screens.Count("warn 28"), 1);
    EXPECT_TRUE(screen.IsOpen());

    unit.Command("power 20");
    Play({Tap(Row(1)), Tap(Row(1))}, 200);
    EXPECT_TRUE(screen.IsOpen()) << "two taps that are no pair";
    EXPECT_THAT(Commands(), testing::IsEmpty());
    Play({Tap(Row(1)), Tap(Row(1))}, 100);
    RunFor(500);
    EXPECT_FALSE(screen.IsOpen());
    EXPECT_THAT(Commands(), testing::ElementsAre("ATD10010;"));
    EXPECT_EQ(Shown(Lists().dialled), "Bob10010 ");
}

TEST_F(CallRecordsScreen, DeletesWhatWasMeantAndSelectsTheRowAbove) {
    for (const char* const number : {"1", "2", "3", "4"})
        Put(Lists().missed, number);
    Open(screen);
    Play({Tap(Row(2)), Tap(deleteButton), Tap(idCancel), Tap(deleteButton), Tap(idOk)});
    EXPECT_EQ(Shown(Lists().missed), "1 3 4 ");
    EXPECT_EQ(Counter(screen), "2/3");
    // A call is missed while the question stands.
    const auto miss = [&] {
        Put(Lists().missed, "5");
        desktop.OnSessionChanged();
    };
    Play({Tap(Row(0)), Tap(deleteButton), miss, Tap(idOk)});
    EXPECT_EQ(Shown(Lists().missed), "1 3 5 ");
    Play({Tap(deleteButton), miss, Tap(deleteAll), Tap(idOk)});
    EXPECT_EQ(Shown(Lists().missed), "5 ");
    EXPECT_EQ(Counter(screen), "1/1");
    // The screen is left before the flash is ready.
    Play({Tap(deleteButton), Tap(idOk), [&] { screen.EndDialog(DialogResult::Ok); }}, 20);
    RunFor(100);
    EXPECT_EQ(Shown(Lists().missed), "");
}

TEST_F(CallRecordsScreen, CountsMissedCallsUntilTheirListIsSeen) {
    OpenModule();
    for (int call = 1; call <= 2; ++call) {
        unit.Command("call 10010");
        RunFor(6000);
        unit.Command("hangup");
        RunFor(6000);
        EXPECT_EQ(dialog->Calls().NewMissed(), call);
        EXPECT_EQ(Settings(registry).ReadNewMissed(), static_cast<std::uint32_t>(call));
    }
    Open(screen);
    RunFor(100);
    EXPECT_EQ(Counter(screen), "1/2");
    EXPECT_EQ(dialog->Calls().NewMissed(), 0);
    EXPECT_EQ(Settings(registry).ReadNewMissed(), 0u);
}

TEST_F(CallRecordsScreen, PutsANumberIntoThePhonebookOnce) {
    Put(Lists().missed, "10010");
    Open(screen);
    for (const char* const name : {"Ann", "a"})
        Play({Tap(CCallRecordsDlg::addId), Tap(nameField), Type(name), Tap(saveId)});
    EXPECT_EQ(Entries(), "Anna:10010, ");
}

struct PhoneBookScreen : PhoneScreens {
    int Rows() { return screen.Get<ListBox>(numbersId).Count(); }

    CPhoneBookDlg screen{*context, PhoneBookMode::Use};
};

TEST_F(PhoneBookScreen, FindsWhileTypingAndCallsTheSelectedNumber) {
    OpenModule();
    Add({"Анна", {"10010", "10086"}});
    Add({"bob", {"222"}});
    Open(screen);
    EXPECT_EQ(Rows(), 2);
    Play({Tap(searchField), Type("аНН")});
    EXPECT_EQ(Rows(), 1);
    Play({Type("я")});
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(TextOf(screen, 1002), "Nothing found");
    Play({Press(KeyCode::Back), Tap(Row(0)), Press(KeyCode::Down), Tap(callButton)});
    RunFor(500);
    EXPECT_FALSE(screen.IsOpen());
    EXPECT_EQ(Shown(Lists().dialled), NarrowFromUtf8(codePage, "Анна") + "10086 ");
}

TEST_F(PhoneBookScreen, KeepsTheFormOpenUntilTheEntryIsTaken) {
    Settings(registry).WriteCardSaveTo(PhoneBookKind::Sim);
    Open(screen);
    // The SIM cannot be reached while the module is closed.
    Play({Tap(newId), Tap(nameField), Type("Ann"), Tap(saveId), Answer(WarnCode::NoNumber), Tap(numberField),
          Type("10010"), Tap(saveId), Answer(WarnCode::NetClosed), Tap(exitId),
          Answer(WarnCode::WritePrompt, idCancel)});
    EXPECT_EQ(Top<CPhoneBookDlg>(), &screen);
    EXPECT_EQ(Entries(), "");

    OpenModule();
    Play({Tap(newId), Tap(nameField), Type("Ann"), Tap(numberField), Type("10010"), Tap(saveId)});
    EXPECT_TRUE(RunUntil([&] { return Rows() == 1; }, 20'000));
    EXPECT_EQ(Entries(), "Ann:10010, ");
}

TEST_F(PhoneBookScreen, TellsOfAFailureAlsoWhenTheFormWasLeft) {
    OpenModule();
    Settings(registry).WriteCardSaveTo(PhoneBookKind::Sim);
    unit.Command("book size 0");
    Open(screen);
    Play({Tap(newId), Tap(numberField), Type("10010"), Tap(saveId), Tap(exitId)}, 20);
    bool warned = false;
    Play({[&] { warned = Top<CWarnDlg>(); }, Tap(idOk)}, 10'000);
    EXPECT_TRUE(warned);
    EXPECT_EQ(Top<CPhoneBookDlg>(), &screen);
}

TEST_F(PhoneScreens, PicksTheOnlyNumberAtOnceAndOtherwiseAsks) {
    Add({"one", {"", "1"}});
    Add({"two", {"2", "", "4"}});
    std::optional<std::string> picked;
    const auto pick = [&] { picked = CPhoneBookDlg::PickNumber(*context); };
    Play({pick, Tap(Row(0))});
    EXPECT_EQ(picked, "1");
    Play({pick, Tap(Row(1)), Press(KeyCode::Down), Press(KeyCode::Return)});
    EXPECT_EQ(picked, "4");
    Play({pick, Tap(exitId)});
    EXPECT_EQ(picked, std::nullopt);
}

}  // namespace
}  // namespace varkel::test
