// The unit's screen: one window of a fixed size, what is shown in it and what touches it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/canvas.h"

namespace varkel {

enum class TouchAction { Down, Move, Up };

// Between a Down and its Up these are a finger's, or a pointer's with its button held; places may then lie
// outside the screen. Moves without a Down are a pointer's that passes over the screen.
struct TouchEvent {
    TouchAction action = TouchAction::Down;
    Point at;
};

// WM_KEYDOWN and WM_SYSKEYDOWN; the numbers are those of virtual keys.
enum class KeyCode : std::uint32_t {
    None = 0,  // the key only types `text`
    Back = 0x08,
    Tab = 0x09,
    Return = 0x0D,
    Escape = 0x1B,
    PageUp = 0x21,
    PageDown = 0x22,
    End = 0x23,
    Home = 0x24,
    Left = 0x25,
    Up = 0x26,
    Right = 0x27,
    Down = 0x28,
    Delete = 0x2E,
    Sleep = 0x5F,   // the unit goes to sleep
    WakeUp = 0xEE,  // it is back
};

struct KeyEvent {
    KeyCode code = KeyCode::None;
    std::string text;  // UTF-8, what the key types; empty when that is nothing
};

// What the window's owner does. All run on the dialog thread, from its message loop.
struct DisplayClient {
    // Draws what lies in `damage`; the canvas is clipped to it.
    std::function<void(Canvas&, const Rect& damage)> onPaint = nullptr;
    std::function<void(const TouchEvent&)> onTouch = nullptr;
    std::function<void(const KeyEvent&)> onKey = nullptr;
    // The system, not the program, wants the window closed.
    std::function<void()> onClose = nullptr;
};

// All calls on the dialog thread; none waits for the screen.
class Display {
  public:
    virtual ~Display() = default;

    static constexpr Size screen{800, 480};

    // Only one client at a time; without one nothing is painted.
    virtual void SetClient(DisplayClient client) = 0;
    virtual void SetWindowText(std::string_view title) = 0;
    virtual void ShowWindow(bool show) = 0;
    virtual bool IsShown() const = 0;

    // Marks what is to be painted anew: soon, once for all that was marked until then.
    virtual void InvalidateRect(const Rect& rect) = 0;
    // Paints at once what was marked, and hands it to the screen.
    virtual void UpdateWindow() = 0;
    // Where the finger is that touches the screen, or the pointer; {-1, -1} when there is none.
    virtual Point GetCursorPos() const = 0;

    virtual Graphics& GetGraphics() = 0;
};

}  // namespace varkel
