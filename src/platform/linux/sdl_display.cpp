#include "platform/linux/sdl_display.h"

#include <SDL_hints.h>
#include <string>

namespace varkel {

namespace {

struct Hint {
    const char* name;
    const char* value;
};
constexpr Hint hints[] = {
    {SDL_HINT_APP_NAME, "Varkel"},
    // The window's pixels come from memory; a detour through the graphics processor costs 100 ms at the start
    // and 100 MiB.
    {SDL_HINT_FRAMEBUFFER_ACCELERATION, "0"},
    {SDL_HINT_NO_SIGNAL_HANDLERS, "1"},
    {SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1"},
    {SDL_HINT_TOUCH_MOUSE_EVENTS, "0"},
    {SDL_HINT_MOUSE_TOUCH_EVENTS, "0"},
    // The press that brings the window to the front is meant for what it shows.
    {SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1"},
    // A close button asks once.
    {SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0"},
    {SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0"},
};

}  // namespace

std::unique_ptr<SdlDisplay> SdlDisplay::Create(Runtime& runtime, MessageLoop& loop, UnitFiles& files,
                                               const SdlDisplayOptions& options) {
    constexpr Ticks patience = 3000;
    for (const Hint& hint : hints)
        SDL_SetHint(hint.name, hint.value);
    std::unique_ptr<SdlDisplay> display(new SdlDisplay(runtime, loop, files, options));
    std::string fault;
    if (!display->m_thread) {
        fault = "no thread for it";
    } else if (display->m_opened->Wait(patience) != WaitResult::Object0) {
        fault = "the display server does not answer";
    } else if (const auto refused = display->m_window->Fault()) {
        fault = *refused;
    } else {
        return display;
    }
    Report(options.onProblem, "no window: " + fault);
    return nullptr;
}

SdlDisplay::SdlDisplay(Runtime& runtime, MessageLoop& loop, UnitFiles& files,
                       const SdlDisplayOptions& options)
    : PaintedDisplay(loop, files),
      m_opened(runtime.CreateEvent(EventReset::Manual)),
      m_window(std::make_shared<SdlWindow>(Input(), options.fullScreen, options.onProblem, m_opened)),
      m_thread(runtime.CreateThread({.name = "display"}, [window = m_window] { window->Run(); })) {}

SdlDisplay::~SdlDisplay() {
    constexpr Ticks patience = 2000;
    m_window->End();
    if (m_thread && !m_window->Fault()) m_thread->Wait(patience);
}

void SdlDisplay::SetWindowText(std::string_view title) {
    m_window->SetTitle(title);
}

void SdlDisplay::Present(const Rect& damage) {
    m_window->Draw(BackBuffer().Pixels(), damage);
}

void SdlDisplay::ShowOnScreen(bool show) {
    m_window->Show(show);
}

}  // namespace varkel
