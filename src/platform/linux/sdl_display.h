// The display as a window of X11 or Wayland, through SDL.
#pragma once

#include <memory>

#include "platform/linux/painted_display.h"
#include "platform/linux/problem_sink.h"
#include "platform/linux/sdl_window.h"
#include "platform/runtime.h"

namespace varkel {

struct SdlDisplayOptions {
    bool fullScreen = false;          // for a panel of its own
    ProblemSink onProblem = nullptr;  // on any thread
};

// One in a program, and made after its SdlSound: SDL's settings are one for all. Dialog thread.
class SdlDisplay final : public PaintedDisplay {
  public:
    // Null, and the reason is reported, when there is no display server or it does not answer within 3 s.
    static std::unique_ptr<SdlDisplay> Create(Runtime& runtime, MessageLoop& loop, UnitFiles& files,
                                              const SdlDisplayOptions& options);
    // A thread that hangs in the display server is left behind after 2 s.
    ~SdlDisplay() override;

    void SetWindowText(std::string_view title) override;

  private:
    SdlDisplay(Runtime& runtime, MessageLoop& loop, UnitFiles& files, const SdlDisplayOptions& options);

    void Present(const Rect& damage) override;
    void ShowOnScreen(bool show) override;

    const std::shared_ptr<Event> m_opened;
    const std::shared_ptr<SdlWindow> m_window;  // shared with its thread
    const std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel
