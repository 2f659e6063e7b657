#include "session/main_window.h"

namespace varkel {

bool PostToMainWindow(Platform& platform, MessageId message, std::uint32_t wParam, std::uint32_t lParam) {
    int window = 0;
    if (!platform.driver.GetMainHandle(window) || window == 0) return false;
    return platform.windows.PostMessage(static_cast<WindowHandle>(window), {message, wParam, lParam});
}

}  // namespace varkel
