// What the tests of the telephone's screens share.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/screen_bench.h"
#include "ui/screens/list_screen.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel::test {

struct ScreenTest : testing::Test, ScreenBench {
    void Open(Dialog& screen) {
        screen.Show();
        RunFor(10);
    }
    // The session tells that something has changed.
    void Repaint() {
        screens.Repaint();
        RunFor(10);
    }
    static std::string Counter(const Dialog& screen) { return TextOf(screen, ListScreen::counterId); }
    // A row of a list.
    static constexpr Point Row(int row) { return {200, 130 + 86 * row + 40}; }

    // To the warning that must be topmost by then.
    Step Answer(WarnCode code, int button = idOk) {
        return [this, code, button] {
            ASSERT_TRUE(Top<CWarnDlg>()) << static_cast<int>(code);
            EXPECT_EQ(Top<CWarnDlg>()->Code(), code);
            Tap(button)();
        };
    }
};

}  // namespace varkel::test
