// What every screen of the telephone works with.
#pragma once

#include "platform/platform.h"
#include "session/varkel_dlg.h"
#include "ui/desktop.h"

namespace varkel {

// References that outlive the screens. Dialog thread.
struct ScreenContext {
    Desktop& desktop;
    CVarkelDlg& session;
    Platform& platform;
};

}  // namespace varkel
