// How long full lists take to the picture: 10,000 missed calls and 2,000 contacts, without the animation.
// Processor time, so that other programs on the machine do not count; a frame has 16.7 ms.
#include <cstdio>
#include <ctime>

#include "tests/support/screen_bench.h"
#include "ui/screens/call_records_dlg.h"
#include "ui/screens/phone_book_dlg.h"

namespace {

using namespace varkel;

template <class Record>
std::string Bytes(const std::vector<Record>& records) {
    return {reinterpret_cast<const char*>(records.data()), records.size() * sizeof(Record)};
}

void FillFiles(UnitFiles& files) {
    std::vector<CallRecord> calls;
    for (int i = 0; i < 10'000; ++i)
        calls.push_back(MakeCallRecord({.year = 2009, .month = 3, .day = 7}, "Bob", std::to_string(i)));
    std::vector<PhoneBookRecord> contacts(2000);
    for (std::size_t i = 0; i < contacts.size(); ++i) {
        contacts[i].name.Assign("Contact " + std::to_string(i));
        contacts[i].numbers[0].Assign(std::to_string(13800000000 + i));
    }
    (void)files.WriteWhole("NandFlash\\System\\Phone\\missedcall.msm", Bytes(calls));
    (void)files.WriteWhole("NandFlash\\System\\Phone\\phonebook.msm", Bytes(contacts));
}

}  // namespace

int main() {
    test::ScreenBench bench;
    FillFiles(bench.files);
    const auto measure = [&bench](const char* what, auto work) {
        const std::clock_t begin = std::clock();
        work();
        bench.RunFor(1);
        std::printf("%-24s %6.2f ms\n", what,
                    1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    };
    CCallRecordsDlg calls(*bench.context);
    measure("open the call records", [&] { calls.Show(); });
    measure("scroll a page", [&] { calls.Click(ListScreen::pageDownId); });
    measure("look for news", [&] { calls.OnSessionChanged(); });
    calls.EndDialog(DialogResult::Ok);
    bench.RunFor(10);

    CPhoneBookDlg phoneBook(*bench.context, PhoneBookMode::Use);
    measure("open the phonebook", [&] { phoneBook.Show(); });
    bench.display.Tap({300, 90});
    bench.RunFor(10);
    measure("type a character", [&] { bench.display.Key({KeyCode::None, "9"}); });
    phoneBook.EndDialog(DialogResult::Ok);
    bench.RunFor(10);
}
