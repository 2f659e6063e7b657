// The head unit's main window, which hears how the program fares.
#pragma once

#include <cstdint>

#include "platform/platform.h"

namespace varkel {

// Posts a message to the window that the driver library names; false when it names none. Any thread.
bool PostToMainWindow(Platform& platform, MessageId message, std::uint32_t wParam, std::uint32_t lParam);

}  // namespace varkel
