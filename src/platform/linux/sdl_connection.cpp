#include "platform/linux/sdl_connection.h"

#include <SDL_syswm.h>
#include <dlfcn.h>

namespace varkel {

namespace {

// SDL loads the libraries of the server that it has found; no other is wanted.
template <typename Function>
Function LoadedFunction(const char* library, const char* name) {
    void* const loaded = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    return loaded ? reinterpret_cast<Function>(dlsym(loaded, name)) : nullptr;
}

constexpr const char* xLibrary = "libX11.so.6";
constexpr const char* waylandLibrary = "libwayland-client.so.0";

void (*lostHandler)() = nullptr;

int TellLoss(Display*) {
    lostHandler();
    return 0;
}

}  // namespace

std::optional<int> ConnectionOf(SDL_Window* window) {
    SDL_SysWMinfo info{};
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE) return std::nullopt;
    if (info.subsystem == SDL_SYSWM_X11) return ConnectionNumber(info.info.x11.display);
    if (info.subsystem != SDL_SYSWM_WAYLAND) return std::nullopt;
    const auto descriptor = LoadedFunction<int (*)(wl_display*)>(waylandLibrary, "wl_display_get_fd");
    if (!descriptor) return std::nullopt;
    return descriptor(info.info.wl.display);
}

void OnConnectionLost(void (*handler)()) {
    lostHandler = handler;
    const auto set = LoadedFunction<XIOErrorHandler (*)(XIOErrorHandler)>(xLibrary, "XSetIOErrorHandler");
    if (set) set(TellLoss);
}

}  // namespace varkel
