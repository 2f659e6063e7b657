// The opening and closing of a screen: the picture that was there parts in the middle and its halves leave to
// both sides, or they come back and meet. Dialog thread.
#pragma once

#include <functional>
#include <memory>

#include "platform/canvas.h"
#include "ui/toolkit/timers.h"

namespace varkel {

class Curtain {
  public:
    // `onStep` is told that the whole picture has changed.
    Curtain(MessageLoop& loop, TimerNumbers& numbers, std::function<void()> onStep);

    // `picture` is what the halves show. `done` runs when they have left the screen, or have met.
    void Open(std::unique_ptr<Surface> picture, std::function<void()> done);
    void Close(std::unique_ptr<Surface> picture, std::function<void()> done);
    // Ends the movement where it is, without `done`.
    void Stop();

    bool Moving() const { return m_direction != 0; }
    void Draw(Canvas& canvas) const;

    static constexpr int step = 40;         // pixels
    static constexpr Ticks stepTime = 10;   // ms
    static constexpr Ticks duration = 100;  // ms, of the whole movement

  private:
    void Move(int direction, std::unique_ptr<Surface> picture, std::function<void()> done);
    void OnStep();

    Timers m_timers;
    std::function<void()> m_onStep;
    std::unique_ptr<Surface> m_picture;
    std::function<void()> m_done;
    int m_gap = 0;  // how far each half has moved
    int m_direction = 0;
};

}  // namespace varkel
