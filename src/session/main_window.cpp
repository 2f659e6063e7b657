#include "session/main_window.h"

namespace varkel {

bool PostToMainWindow(Platform& platform, MessageId message, std::uint32_t wParam, std::uint32_t lParam) {
    int window = 0;
    if (!platform.driver.GetMainHandle(window) || window == 0) return false;
    return platform.windows.PostMessage(static_cast<WindowHandle>(window), {message, wParam, lParam});
}

void Broadcast(Platform& platform, std::string_view name, std::uint32_t wParam, std::uint32_t lParam) {
    WindowMessages& windows = platform.windows;
    windows.PostMessage(WindowHandle::Broadcast, {windows.RegisterWindowMessage(name), wParam, lParam});
}

}  // namespace varkel
