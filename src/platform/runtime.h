// Time, events and threads: the calls through which everything above the platform layer waits.
//
// The names are those of the calls they stand for (GetTickCount, Sleep, CreateEvent, CreateThread,
// SuspendThread, ResumeThread, PostThreadMessage, GetMessage). Two runtimes exist: the one of the system, and
// a virtual one in which a seed chooses the order of everything and time passes only when nobody can run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace varkel {

// Milliseconds since some start, wrapping every 49.7 days. Only differences mean anything: use TicksSince().
using Ticks = std::uint32_t;
inline constexpr Ticks infiniteTicks = 0xFFFFFFFF;

// The time from `then` to `now`, right across a wrap.
constexpr Ticks TicksSince(Ticks now, Ticks then) {
    return now - then;
}

struct LocalTime {
    int year = 0;
    int month = 0;  // 1..12
    int day = 0;    // 1..31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// What a wait came back with; the numbers are those of WaitForSingleObject.
enum class WaitResult : std::uint32_t { Object0 = 0, Timeout = 258, Failed = 0xFFFFFFFF };

// CreateEvent, EventModify (Set, Reset), WaitForSingleObject (Wait). Any thread may call anything.
class Event {
  public:
    virtual ~Event() = default;
    virtual void Set() = 0;
    virtual void Reset() = 0;
    // Waits until the event is signalled, for at most `timeout` ms. An event that resets itself lets one wait
    // pass.
    virtual WaitResult Wait(Ticks timeout) = 0;
};

enum class EventReset { Manual, Automatic };

// A thread's name for PostThreadMessage. Never given twice by one runtime.
enum class ThreadId : std::uint32_t { None = 0 };

// One message of a thread's queue. A buffer travels with it and belongs to whoever holds the message.
struct ThreadMessage {
    std::uint32_t message = 0;
    std::size_t wParam = 0;
    std::unique_ptr<char[]> lParam;
};

enum class ThreadPriority { Normal, Lowest };

struct ThreadOptions {
    std::string name;  // for logs and deadlock reports, at most 15 characters
    bool suspended = false;
    ThreadPriority priority = ThreadPriority::Normal;
};

// A handle to a thread. Dropping the last one neither ends nor joins the thread: the runtime keeps what it
// needs.
class Thread {
  public:
    virtual ~Thread() = default;
    virtual ThreadId Id() const = 0;
    // Lets a suspended thread run. On a running thread the call is remembered: its next SuspendThread returns
    // at once.
    virtual void ResumeThread() = 0;
    // Waits until the body has returned; Object0 or Timeout.
    virtual WaitResult Wait(Ticks timeout) = 0;
};

class Runtime {
  public:
    virtual ~Runtime() = default;

    virtual Ticks GetTickCount() = 0;
    virtual void Sleep(Ticks milliseconds) = 0;
    virtual LocalTime GetLocalTime() = 0;

    // Created non-signalled.
    virtual std::shared_ptr<Event> CreateEvent(EventReset reset) = 0;

    // Null when the system refuses. Messages may be posted to the thread from the moment this returns.
    virtual std::shared_ptr<Thread> CreateThread(const ThreadOptions& options,
                                                 std::function<void()> body) = 0;
    virtual ThreadId CurrentThreadId() = 0;
    // Suspends the calling thread until somebody resumes it.
    virtual void SuspendThread() = 0;

    // False when the thread does not exist (any more) or has `threadQueueLimit` messages waiting; the
    // message, and with it the buffer, is then still the caller's.
    virtual bool PostThreadMessage(ThreadId thread, ThreadMessage& message) = 0;
    // Waits for the next message of the calling thread, which must be one that CreateThread made.
    virtual ThreadMessage GetMessage() = 0;

    static constexpr std::size_t threadQueueLimit = 256;
};

}  // namespace varkel
