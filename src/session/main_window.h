// How the program tells the head unit's main window, and all other windows, how it fares.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace varkel {

// Posts a message to the window that the driver library names; false when it names none. Any thread.
bool PostToMainWindow(Platform& platform, MessageId message, std::uint32_t wParam, std::uint32_t lParam);

// Posts a registered message to every window of every program. Any thread.
void Broadcast(Platform& platform, std::string_view name, std::uint32_t wParam, std::uint32_t lParam);

}  // namespace varkel
