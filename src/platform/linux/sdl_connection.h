// The connection that SDL's window has with its display server.
#pragma once

#include <SDL_video.h>
#include <optional>

namespace varkel {

// Readable when the server has something to tell. Nothing when the window is of neither X11 nor Wayland.
std::optional<int> ConnectionOf(SDL_Window* window);

// X11 ends the program when its server is gone, in the middle of whatever call finds out. From now on
// `handler` is called there instead, which must not return. Takes the place of the last one.
void OnConnectionLost(void (*handler)());

}  // namespace varkel
