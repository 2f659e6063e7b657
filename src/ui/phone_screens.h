// The way from the main screen to every other one.
#pragma once

#include "ui/screens/screen_context.h"
#include "ui/window_screens.h"

namespace varkel {

// Dialog thread. `context`, which learns how a number is picked, outlives the hooks.
ScreenHooks PhoneScreens(ScreenContext& context);

}  // namespace varkel
