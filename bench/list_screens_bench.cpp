// How long full lists take to the picture: 10,000 missed calls and 2,000 contacts, without the animation.
// Processor time, so that other programs on the machine do not count; a frame has 16.7 ms.
#include <cstdio>
#include <ctime>

#include "tests/stores/stores_fixture.h"
#include "tests/support/screen_bench.h"
#include "ui/screens/call_records_dlg.h"
#include "ui/screens/phone_book_dlg.h"

namespace {

using namespace varkel;

void FillFiles(UnitFiles& files) {
    std::vector<CallRecord> calls;
    for (int i = 0; i < 10'000; ++i)
        calls.push_back(MakeCallRecord({.year = 2009, .month = 3, .day = 7}, "Bob", std::to_string(i)));
    (void)files.WriteWhole("NandFlash\\System\\Phone\\missedcall.msm", test::BytesOf(calls));
    (void)files.WriteWhole("NandFlash\\System\\Phone\\phonebook.msm",
                           test::BytesOf(test::Several(test::Phone, 1, 2000)));
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
