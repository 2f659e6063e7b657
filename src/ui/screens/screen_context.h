// What every screen of the telephone works with.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/platform.h"
#include "session/varkel_dlg.h"
#include "ui/toolkit/desktop.h"

namespace varkel {

// References that outlive the screens. Dialog thread.
struct ScreenContext {
    Desktop& desktop;
    CVarkelDlg& session;
    Platform& platform;
    // Lets the user choose a number of the phonebook; nothing when he leaves that without one. Empty where
    // there is no such screen.
    std::function<std::optional<std::string>()> pickNumber = nullptr;
};

}  // namespace varkel
