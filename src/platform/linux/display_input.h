// What the user does, on its way from any thread to the dialog thread.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <variant>

#include "platform/display.h"
#include "platform/message_loop.h"

namespace varkel {

struct CloseRequest {};

using InputEvent = std::variant<TouchEvent, KeyEvent, CloseRequest>;

// A bounded queue that the message loop serves one event at a time, so that a modal screen gets what comes
// after the touch that opened it. A dialog thread that is late gets the last of several moves. When `limit`
// events wait, keys and new touches are dropped; the end of a touch that was taken never is.
class DisplayInput : public std::enable_shared_from_this<DisplayInput> {
  public:
    using Handler = std::function<void(const InputEvent&)>;

    explicit DisplayInput(MessageLoop& loop);

    // Any thread.
    void Put(InputEvent event);
    void SetCursorPos(Point at);
    Point GetCursorPos() const;

    // Dialog thread; null = what comes is dropped.
    void SetHandler(Handler handler) { m_handler = std::move(handler); }

    static constexpr std::size_t limit = 64;

  private:
    bool Take(InputEvent&& event);
    void ServeSoon();
    void Serve();

    MessageLoop& m_loop;
    Handler m_handler;
    mutable std::mutex m_mutex;
    std::deque<InputEvent> m_events;  // under the mutex, as the rest
    bool m_touching = false;          // the last touch that was taken has not ended
    bool m_posted = false;
    Point m_cursor{-1, -1};
};

}  // namespace varkel
