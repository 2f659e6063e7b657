// The rules of the screen, for what the toolkit itself shows.
#include <gmock/gmock.h>

#include "tests/support/dialog_survey.h"
#include "tests/support/ui_bench.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/message_box.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/warn_dlg.h"
#include "ui/toolkit/warn_texts.h"

namespace varkel::test {
namespace {

using testing::IsEmpty;

constexpr EditSpec edits[] = {{.id = 1, .rect = {20, 60, 400, 64}}};
constexpr DialogSpec spec{.edits = edits};

struct Survey : testing::TestWithParam<Look>, UiBench {
    Survey() : UiBench(std::get<0>(GetParam()), std::string(std::get<1>(GetParam()))) {}
};

TEST_P(Survey, EveryWarningCanBeReadAndTouched) {
    for (int code = 1; code <= 39; ++code) {
        EXPECT_NE(WarnText(WarnCode(code), language), "") << code;
        for (int mode = 0; mode <= 2; ++mode) {
            CWarnDlg dialog(desktop, WarnCode(code), WarnButtonMode(mode));
            dialog.Show();
            EXPECT_THAT(FaultsOf(dialog), IsEmpty()) << code;
        }
    }
}

TEST_P(Survey, TheDeleteChoiceIsSmallButClear) {
    CWarnDlg dialog(desktop, WarnCode::DeletePrompt, WarnButtonMode::OkCancel, false, true);
    dialog.Show();
    for (const TouchTarget& target : dialog.Targets())
        EXPECT_GE(std::min(target.rect.width, target.rect.height), 63);
    for (const ShownText& shown : TextsOf(dialog)) {
        EXPECT_TRUE(shown.fits) << shown.text;
        EXPECT_GE(Contrast(shown.color, shown.ground), 4.5) << shown.text;
    }
}

TEST_P(Survey, BoxesAndTips) {
    for (const char* text : {"write port failed!", "open port faild", "load failed",
                             "Failed to run iexplore.exe!", "Don't surport horizontal scrollbar"}) {
        boxes.ShowMessageBox(text, "");
        Settle();
        EXPECT_THAT(FaultsOf(*desktop.Active()), IsEmpty());
    }
    CPromptDlg tip(desktop);
    for (const char* key : {"IDS_SENDINGNOTE", "IDS_SENDNOTE_SUS", "IDS_SENDNOTE_FAIL"}) {
        tip.ShowTip(language.LoadString(key));
        EXPECT_THAT(FaultsOf(tip), IsEmpty());
    }
}

TEST_P(Survey, Keyboard) {
    Dialog dialog(desktop, spec);
    dialog.Show();
    Tap(dialog.Get<EditField>(1).Place());
    for (const KeyAction page :
         {KeyAction::Symbols, KeyAction::National, KeyAction::Symbols, KeyAction::Latin}) {
        Tap(keyboard.PlaceOf(page));
        EXPECT_THAT(FaultsOf(keyboard), IsEmpty());
        Down(Middle(keyboard.PlaceOf(".")));
        EXPECT_THAT(FaultsOf(keyboard), IsEmpty());
        Up({0, 0});
    }
}

INSTANTIATE_TEST_SUITE_P(SkinsAndLanguages, Survey, AllLooks(), NameOfLook);

}  // namespace
}  // namespace varkel::test
