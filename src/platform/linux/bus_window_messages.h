// Windows as objects on the message bus.
//
// The window with index 3 of the program ":1.42" is the object /org/varkel/window/3 there, and its handle is
// 42 << 8 | 3. A bus never gives a unique name twice and a program never gives an index twice, so a handle
// names one window for ever, and leads to its owner without a directory.
//
//     /org/varkel/window/3: org.varkel.Window1
//         Post(id, wParam, lParam), PostRegistered(name, wParam, lParam), CopyData(dwData, bytes) -> result
//         properties Title, Handle
//     /org/varkel/window: org.varkel.Windows1
//         FindWindow(title) -> handle, signal Broadcast(name, wParam, lParam)
//
// A program that has a window of a title owns the bus name org.varkel.window.W<title>, where every byte but
// ASCII letters, digits and "-" is "_" and two hexadecimal digits; its FindWindow tells which window it is.
#pragma once

#include <memory>

#include "platform/linux/bus.h"
#include "platform/linux/window_table.h"
#include "platform/message_loop.h"
#include "platform/window_messages.h"

struct sd_bus_slot;

namespace varkel {

// Messages reach the dialog thread through its loop. Without a bus the windows live inside this program.
class BusWindowMessages final : public WindowMessages {
  public:
    // Dialog thread.
    BusWindowMessages(Bus& bus, MessageLoop& loop, ProblemSink onProblem);
    ~BusWindowMessages() override;

    // On the bus this waits for an answer, at most a second, so that the title is found from now on.
    WindowHandle CreateWindow(std::string_view title, WindowProcedure procedure) override;
    void DestroyWindow(WindowHandle window) override;
    void SetWindowText(WindowHandle window, std::string_view title) override;
    MessageId RegisterWindowMessage(std::string_view name) override;
    // Only registered messages can be broadcast: a number means nothing to every program alike.
    bool PostMessage(WindowHandle window, const WindowMessage& message) override;
    // Windows of this program come first. Another program is asked for at most a second.
    WindowHandle FindWindow(std::string_view title) override;
    // The title of any program's window; nothing when there is no such window. Waits for at most a second.
    std::optional<std::string> GetWindowText(WindowHandle window);
    // Waits for at most a second.
    std::optional<std::uint32_t> SendCopyData(WindowHandle window, std::uint32_t dwData,
                                              std::span<const std::byte> data) override;

    static constexpr std::size_t largestCopyData = 4096;

  private:
    struct Service;

    WindowHandle HandleOf(WindowIndex window) const;
    // The index when the handle is one of ours, else nothing.
    std::optional<WindowIndex> OwnWindow(WindowHandle window) const;
    bool Broadcast(const std::string& name, const WindowMessage& message);
    void ClaimTitle(const std::string& title);
    void GiveUpTitle(const std::string& title);

    Bus& m_bus;
    const std::shared_ptr<WindowTable> m_table;
    const std::unique_ptr<Service> m_service;
};

}  // namespace varkel
