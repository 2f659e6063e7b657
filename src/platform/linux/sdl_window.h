// A window of the display server and the thread that alone speaks with it.
#pragma once

#include <SDL_video.h>
#include <cairo.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/file_descriptor.h"
#include "platform/linux/problem_sink.h"
#include "platform/linux/sdl_input.h"
#include "platform/runtime.h"

namespace varkel {

// Takes orders from the dialog thread and carries them out on its own, so that a display server that is slow
// or stands still holds up nothing but the picture. It sleeps until there is an order or an event. When the
// server goes, the window is lost, which is reported, and orders come to nothing.
class SdlWindow {
  public:
    // Full screen: the picture stands in the middle, black around it.
    SdlWindow(std::shared_ptr<DisplayInput> input, bool fullScreen, ProblemSink onProblem,
              std::shared_ptr<Event> opened);

    // Dialog thread. A part of the picture, which has the size of the screen, is new.
    void Draw(cairo_surface_t* picture, const Rect& part);
    void Show(bool show);
    void SetTitle(std::string_view title);
    void End();
    // Why there is no window; nothing when there is one, or when it is not known yet. Any thread.
    std::optional<std::string> Fault() const;

    // The thread's body: opens the window, hidden, signals `opened`, and serves it until End.
    void Run();

  private:
    struct Orders {
        std::optional<std::string> title;
        std::optional<bool> show;
        bool end = false;
        Rect fresh;  // what of the picture is not shown yet
    };

    // Changes what both threads share and wakes the thread.
    template <typename Change>
    void Order(const Change& change);
    bool Open();
    void Close();
    // The thread leaves the window as it is: every call would fail.
    void Lost();
    void Serve();
    // False when the end was ordered.
    bool CarryOut();
    void Handle(const SDL_Event& event);
    // False when the server has gone.
    bool Wait();
    void Present(Rect part);
    void Place(const SDL_Surface& surface);

    const std::shared_ptr<DisplayInput> m_input;
    const bool m_fullScreen;
    const ProblemSink m_onProblem;
    const std::shared_ptr<Event> m_opened;
    WakeUp m_wake;

    mutable std::mutex m_mutex;
    Orders m_orders;                     // under the mutex, as the next ones
    std::vector<std::uint32_t> m_front;  // the picture as the thread may show it
    std::optional<std::string> m_fault;

    // Of the thread alone.
    SDL_Window* m_window = nullptr;
    int m_connection = -1;
    SdlInput m_touches;
    Size m_size;  // of the window
    Point m_origin;
    bool m_shown = false;
    bool m_keyHeld = false;
};

}  // namespace varkel
