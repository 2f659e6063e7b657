// The rules of the screen, for what the toolkit itself shows.
#include <gmock/gmock.h>

#include "tests/support/dialog_survey.h"
#include "tests/support/ui_bench.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/message_box.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {
namespace {

constexpr EditSpec edits[] = {{.id = 1, .rect = {20, 60, 400, 64}}};
constexpr DialogSpec spec{.edits = edits};

class Survey : public testing::TestWithParam<std::tuple<const char*, const char*>> {
  protected:
    const char* Skin() const { return std::get<0>(GetParam()); }
    const char* LanguageName() const { return std::get<1>(GetParam()); }
};

TEST_P(Survey, EveryWarningCanBeReadAndTouched) {
    test::UiBench bench(Skin(), LanguageName());
    for (int code = 1; code <= 39; ++code) {
        for (int mode = 0; mode <= 2; ++mode) {
            CWarnDlg dialog(bench.desktop, WarnCode(code), WarnButtonMode(mode));
            dialog.Show();
            EXPECT_THAT(test::FaultsOf(dialog), testing::IsEmpty()) << code;
        }
    }
}

TEST_P(Survey, TheDeleteChoiceIsSmallButClear) {
    test::UiBench bench(Skin(), LanguageName());
    CWarnDlg dialog(bench.desktop, WarnCode::DeletePrompt, WarnButtonMode::OkCancel, false, true);
    dialog.Show();
    for (const TouchTarget& target : dialog.Targets())
        EXPECT_GE(std::min(target.rect.width, target.rect.height), 63);
    for (const test::ShownText& shown : test::TextsOf(dialog)) {
        EXPECT_TRUE(shown.fits) << shown.text;
        EXPECT_GE(test::Contrast(shown.color, shown.ground), 4.5) << shown.text;
    }
}

TEST_P(Survey, BoxesAndTips) {
    test::UiBench bench(Skin(), LanguageName());
    for (const char* text : {"write port failed!", "open port faild", "load failed",
                             "Failed to run iexplore.exe!", "Don't surport horizontal scrollbar"}) {
        bench.boxes.ShowMessageBox(text, "");
        bench.Settle();
        EXPECT_THAT(test::FaultsOf(*bench.desktop.Active()), testing::IsEmpty());
    }
    CPromptDlg tip(bench.desktop);
    for (const char* key : {"IDS_SENDINGNOTE", "IDS_SENDNOTE_SUS", "IDS_SENDNOTE_FAIL"}) {
        tip.ShowTip(bench.language.LoadString(key));
        EXPECT_THAT(test::FaultsOf(tip), testing::IsEmpty());
    }
}

TEST_P(Survey, Keyboard) {
    test::UiBench bench(Skin(), LanguageName());
    Dialog dialog(bench.desktop, spec);
    dialog.Show();
    bench.Tap(dialog.Get<EditField>(1).Place());
    for (const KeyAction page :
         {KeyAction::Symbols, KeyAction::National, KeyAction::Symbols, KeyAction::Latin}) {
        bench.Tap(bench.keyboard.PlaceOf(page));
        EXPECT_THAT(test::FaultsOf(bench.keyboard), testing::IsEmpty());
        bench.Down(test::UiBench::Middle(bench.keyboard.PlaceOf(".")));
        EXPECT_THAT(test::FaultsOf(bench.keyboard), testing::IsEmpty());
        bench.Up({0, 0});
    }
}

INSTANTIATE_TEST_SUITE_P(
    SkinsAndLanguages, Survey,
    testing::Combine(testing::Values("night", "day"),
                     testing::Values("english", "chinese", "tchinese", "russian", "portugal", "arabic")),
    [](const auto& run) { return std::string(std::get<0>(run.param)) + "_" + std::get<1>(run.param); });

}  // namespace
}  // namespace varkel
