// The windows of this program: what reaches them from any thread, and what they are called.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/problem_sink.h"
#include "platform/message_loop.h"
#include "platform/window_messages.h"

namespace varkel {

// Which of its program's windows one is. Counts from 1 and is never given twice.
using WindowIndex = std::uint8_t;

// Lives as long as anything posted to the dialog thread refers to it.
class WindowTable : public std::enable_shared_from_this<WindowTable> {
  public:
    WindowTable(MessageLoop& loop, ProblemSink onProblem);

    // Dialog thread. Nothing when 255 windows have been made.
    std::optional<WindowIndex> Add(std::string_view title, WindowProcedure procedure);
    // Dialog thread: afterwards the window's procedure is not called any more. False when there is no such
    // window.
    bool Remove(WindowIndex window);
    void RemoveAll();

    // Any thread from here on.
    bool SetTitle(WindowIndex window, std::string_view title);
    std::optional<std::string> Title(WindowIndex window) const;
    std::optional<WindowIndex> Find(std::string_view title) const;

    // Posts to the dialog thread. False when there is no such window or `mostWaiting` messages wait already;
    // the first of a run that is dropped so is reported.
    bool Deliver(WindowIndex window, const WindowMessage& message);
    // To every window.
    bool DeliverToAll(const WindowMessage& message);
    // The same for copied data; `onResult` then runs on the dialog thread. If the window has gone meanwhile
    // it is dropped uncalled.
    bool DeliverCopyData(WindowIndex window, std::uint32_t dwData, std::vector<std::byte> data,
                         std::function<void(std::uint32_t)> onResult);

    // As WindowMessages::RegisterWindowMessage.
    MessageId RegisterName(std::string_view name);
    // The number of a name that was registered here; 0 for another one.
    MessageId IdOf(std::string_view name) const;
    // "" for a number that belongs to no name.
    std::string NameOf(MessageId id) const;

    // Messages that the dialog thread has not taken; a flood from outside leaves room for its own work.
    static constexpr std::size_t mostWaiting = 1024;

  private:
    struct Window {
        std::string title;
        std::shared_ptr<const WindowProcedure> procedure;
    };

    bool PostToWindow(WindowIndex window, std::function<void(const WindowProcedure&)> work);
    std::shared_ptr<const WindowProcedure> Procedure(WindowIndex window) const;

    MessageLoop& m_loop;
    const ProblemSink m_onProblem;
    std::atomic<std::size_t> m_waiting = 0;
    std::atomic<bool> m_dropping = false;

    mutable std::mutex m_mutex;
    std::map<WindowIndex, Window> m_windows;
    unsigned m_lastIndex = 0;
    std::vector<std::string> m_names;  // the first one is `firstRegisteredMessage`
};

}  // namespace varkel
