// The phonebook's screens and the call records.
#include <gtest/gtest.h>

#include "tests/support/screen_bench.h"
#include "ui/screens/call_records_dlg.h"
#include "ui/screens/contact_dlg.h"
#include "ui/screens/edit_contact_dlg.h"
#include "ui/screens/phone_book_dlg.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {
namespace {

using testing::Test;

constexpr int deleteIds[] = {1079, 1033, 1034};
constexpr int fieldId = 1040, numbersId = 1030;
constexpr Point firstButton{700, 110}, secondButton{700, 220}, thirdButton{700, 330}, exitButton{765, 25};
constexpr Point receivedTab{300, 90}, dialledTab{500, 90}, searchField{300, 90};
constexpr Point warnOk{320, 343}, warnCancel{480, 343}, deleteAll{440, 291}, onlyOk{474, 343};
constexpr Point Row(int row) {
    return {200, 130 + 86 * row + 40};
}

struct PhoneScreens : Test {
    void OpenModule() {
        bench.OpenModule();
        bench.ForgetRecords();
    }
    CallLists& Lists() { return bench.dialog->Calls().Lists(); }
    static CallRecord Call(std::string_view name, std::string_view number) {
        return MakeCallRecord({.year = 2009, .month = 3, .day = 7, .hour = 18, .minute = 5}, name, number);
    }
    void Put(CallList& list, std::initializer_list<std::string_view> numbers) {
        for (const std::string_view number : numbers)
            ASSERT_EQ(list.WriteCallRecord(Call("", number)), StoreResult::Done);
    }
    // "name number " of each, oldest first.
    static std::string Shown(CallList& list) {
        std::string all;
        for (const CallRecord& record : list.FindCallRecord())
            all.append(record.name.View()).append(record.number.View()).append(" ");
        return all;
    }
    void Add(PhoneText text, PhoneBookKind book = PhoneBookKind::Local) {
        std::optional<PhoneBookResult> result;
        bench.dialog->Phones().Add(book, std::move(text), [&](PhoneBookResult done) { result = done; });
        ASSERT_TRUE(bench.RunUntil([&] { return result.has_value(); }, 20'000));
        ASSERT_EQ(*result, PhoneBookResult::Done);
    }
    // "name:number,number " of each.
    std::string Entries() {
        std::string all;
        for (const PhoneEntry& entry : bench.dialog->Phones().Find(PhoneBooks::Both, ""))
            all += entry.text.name + ":" + entry.text.numbers[0] + "," + entry.text.numbers[1] + " ";
        return all;
    }
    int Dialled() {
        int count = 0;
        for (const std::string& line : bench.unit.TakeTrace())
            count += line.starts_with("ATD");
        return count;
    }
    int WarningOnTop() {
        auto* const warning = bench.Top<CWarnDlg>();
        return warning ? static_cast<int>(warning->Code()) : 0;
    }

    test::ScreenBench bench;
};

struct CallRecordsScreen : PhoneScreens {
    void Open() {
        screen.Show();
        bench.RunFor(10);
    }
    std::string Counter() { return screen.Get<StaticText>(ListScreen::counterId).GetWindowText(); }

    CCallRecordsDlg screen{*bench.context};
};

TEST_F(CallRecordsScreen, ShowsOneListAndOnlyItsDeleteButton) {
    Put(Lists().missed, {"1"});
    Put(Lists().received, {"2", "3"});
    Open();
    const auto shown = [&] {
        std::string ids;
        for (const int id : deleteIds)
            ids += screen.Get<CSkinButton>(id).IsWindowVisible() ? "+" : "-";
        return Counter() + ids;
    };
    EXPECT_EQ(shown(), "1/1+--");
    bench.Play({bench.Tap(receivedTab)});
    EXPECT_EQ(shown(), "1/2-+-");
    bench.Play({bench.Tap(dialledTab), bench.Tap(thirdButton)});
    EXPECT_EQ(shown(), "0/0--+") << "and nothing to delete";
    screen.Click(1027);
    EXPECT_EQ(shown(), "1/1+--");
}

TEST_F(CallRecordsScreen, CallsBackUnderTheNameOfTheRecordUnlessTheSupplyIsLow) {
    OpenModule();
    ASSERT_EQ(Lists().missed.WriteCallRecord(Call("Bob", "10010")), StoreResult::Done);
    ASSERT_EQ(Lists().missed.WriteCallRecord(Call("", "")), StoreResult::Done);
    Open();
    bench.Play({bench.Tap(firstButton)});
    EXPECT_EQ(Dialled() + bench.screens.Count("warn 5"), 0) << "a call without a number";
    bench.unit.Command("power 19");
    bench.Play({bench.Press(KeyCode::Down), bench.Tap(firstButton)});
    EXPECT_EQ(bench.screens.Count("warn 28"), 1);
    EXPECT_TRUE(screen.IsOpen());
    EXPECT_EQ(Dialled(), 0);

    bench.unit.Command("power 20");
    bench.Play({bench.Tap(Row(1)), bench.Tap(Row(1))}, 200);
    EXPECT_TRUE(screen.IsOpen()) << "two taps that are no pair";
    bench.Play({bench.Tap(Row(1)), bench.Tap(Row(1))}, 100);
    bench.RunFor(500);
    EXPECT_FALSE(screen.IsOpen());
    EXPECT_EQ(Dialled(), 1);
    EXPECT_EQ(Shown(Lists().dialled), "Bob10010 ");
}

TEST_F(CallRecordsScreen, DeletesWhatWasMeantAndSelectsTheRowAbove) {
    Put(Lists().missed, {"1", "2", "3", "4"});
    Open();
    bench.Play({bench.Tap(Row(2)), bench.Tap(thirdButton), bench.Tap(warnCancel), bench.Tap(thirdButton),
                bench.Tap(warnOk)});
    EXPECT_EQ(Shown(Lists().missed), "1 3 4 ");
    EXPECT_EQ(Counter(), "2/3");
    // A call is missed while the question stands.
    const auto miss = [&] { Put(Lists().missed, {"5"}), bench.desktop.OnSessionChanged(); };
    bench.Play({bench.Tap(Row(0)), bench.Tap(thirdButton), miss, bench.Tap(warnOk)});
    EXPECT_EQ(Shown(Lists().missed), "1 3 5 ");
    bench.Play({bench.Tap(thirdButton), miss, bench.Tap(deleteAll), bench.Tap(warnOk)});
    EXPECT_EQ(Shown(Lists().missed), "5 ");
    EXPECT_EQ(Counter(), "1/1");
    // The screen is left before the flash is ready.
    bench.Play({bench.Tap(thirdButton), bench.Tap(warnOk), [&] { screen.EndDialog(DialogResult::Ok); }}, 20);
    bench.RunFor(100);
    EXPECT_EQ(Shown(Lists().missed), "");
}

TEST_F(CallRecordsScreen, CountsMissedCallsUntilTheirListIsSeen) {
    OpenModule();
    for (int call = 1; call <= 2; ++call) {
        bench.unit.Command("call 10010");
        bench.RunFor(6000);
        bench.unit.Command("hangup");
        bench.RunFor(6000);
        EXPECT_EQ(bench.dialog->Calls().NewMissed(), call);
        EXPECT_EQ(Settings(bench.registry).ReadNewMissed(), static_cast<std::uint32_t>(call));
    }
    Open();
    bench.RunFor(100);
    EXPECT_EQ(Counter(), "1/2");
    EXPECT_EQ(bench.dialog->Calls().NewMissed(), 0);
    EXPECT_EQ(Settings(bench.registry).ReadNewMissed(), 0u);
}

TEST_F(CallRecordsScreen, PutsANumberIntoThePhonebookOnce) {
    Put(Lists().missed, {"10010"});
    Open();
    for (const char* const name : {"Ann", "a"}) {
        bench.Play(
            {bench.Tap(secondButton), bench.Tap({400, 100}), bench.Type(name), bench.Tap(firstButton)});
    }
    EXPECT_EQ(Entries(), "Anna:10010, ");
}

struct PhoneBookScreen : PhoneScreens {
    void Open() {
        screen.Show();
        bench.RunFor(10);
    }
    int Rows() { return screen.Get<ListBox>(numbersId).Count(); }

    CPhoneBookDlg screen{*bench.context, PhoneBookMode::Use};
};

TEST_F(PhoneBookScreen, FindsWhileTypingAndCallsTheSelectedNumber) {
    OpenModule();
    Add({"Анна", {"10010", "10086"}});
    Add({"bob", {"222"}});
    Open();
    EXPECT_EQ(Rows(), 2);
    bench.Play({bench.Tap(searchField), bench.Type("аНН")});
    EXPECT_EQ(Rows(), 1);
    bench.Play({bench.Type("я")});
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(screen.Get<StaticText>(1002).GetWindowText(), "Nothing found");
    bench.Play(
        {bench.Press(KeyCode::Back), bench.Tap(Row(0)), bench.Press(KeyCode::Down), bench.Tap(firstButton)});
    bench.RunFor(500);
    EXPECT_FALSE(screen.IsOpen());
    EXPECT_EQ(Shown(Lists().dialled),
              "\xA7\xA1\xA7\xDF\xA7\xDF\xA7\xD1"
              "10086 ");
}

TEST_F(PhoneBookScreen, KeepsTheFormOpenUntilTheEntryIsTaken) {
    Settings(bench.registry).WriteCardSaveTo(PhoneBookKind::Sim);
    Open();
    int missing = 0, closed = 0, question = 0;
    bench.Play({bench.Tap(firstButton), bench.Tap({400, 100}), bench.Type("Ann"), bench.Tap(firstButton),
                [&] { missing = WarningOnTop(); }, bench.Tap(onlyOk), bench.Tap({400, 186}),
                bench.Type("10010"), bench.Tap(firstButton), [&] { closed = WarningOnTop(); },
                bench.Tap(onlyOk), bench.Tap(exitButton), [&] { question = WarningOnTop(); },
                bench.Tap(warnCancel)});
    EXPECT_EQ(missing, static_cast<int>(WarnCode::NoNumber));
    EXPECT_EQ(closed, static_cast<int>(WarnCode::NetClosed)) << "the SIM cannot be reached";
    EXPECT_EQ(question, static_cast<int>(WarnCode::WritePrompt));
    EXPECT_EQ(bench.Top<CPhoneBookDlg>(), &screen);
    EXPECT_EQ(Entries(), "");

    OpenModule();
    bench.Play({bench.Tap(firstButton), bench.Tap({400, 100}), bench.Type("Ann"), bench.Tap({400, 186}),
                bench.Type("10010"), bench.Tap(firstButton)});
    EXPECT_TRUE(bench.RunUntil([&] { return Rows() == 1; }, 20'000));
    EXPECT_EQ(Entries(), "Ann:10010, ");
}

TEST_F(PhoneBookScreen, TellsOfAFailureAlsoWhenTheFormWasLeft) {
    OpenModule();
    Settings(bench.registry).WriteCardSaveTo(PhoneBookKind::Sim);
    bench.unit.Command("book size 0");
    Open();
    bench.Play({bench.Tap(firstButton), bench.Tap({400, 186}), bench.Type("10010"), bench.Tap(firstButton),
                bench.Tap(exitButton)},
               20);
    int warned = 0;
    bench.Play({[&] { warned = WarningOnTop(); }, bench.Tap(onlyOk)}, 10'000);
    EXPECT_NE(warned, 0);
    EXPECT_EQ(bench.Top<CPhoneBookDlg>(), &screen);
}

TEST_F(PhoneScreens, PicksTheOnlyNumberAtOnceAndOtherwiseAsks) {
    Add({"one", {"", "1"}});
    Add({"two", {"2", "", "4"}});
    std::optional<std::string> picked;
    const auto pick = [&] { picked = CPhoneBookDlg::PickNumber(*bench.context); };
    bench.Play({pick, bench.Tap(Row(0))});
    EXPECT_EQ(picked, "1");
    bench.Play({pick, bench.Tap(Row(1)), bench.Press(KeyCode::Down), bench.Press(KeyCode::Return)});
    EXPECT_EQ(picked, "4");
    bench.Play({pick, bench.Tap(exitButton)});
    EXPECT_EQ(picked, std::nullopt);
}

}  // namespace
}  // namespace varkel
