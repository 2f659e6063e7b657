// Windows as the programs of a unit use them to talk: posted messages, registered names, titles, copied data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace varkel {

// 32 bits that name a window of any program. Never given twice while the unit runs.
enum class WindowHandle : std::uint32_t { None = 0, Broadcast = 0xFFFF };

// Below 0xC000 the fixed numbers (WM_USER + n); from there on those that RegisterWindowMessage gives.
using MessageId = std::uint32_t;
inline constexpr MessageId WM_KEYDOWN = 0x0100;
inline constexpr MessageId WM_SYSKEYDOWN = 0x0104;
inline constexpr MessageId WM_USER = 0x0400;
inline constexpr MessageId firstRegisteredMessage = 0xC000;

struct WindowMessage {
    MessageId id = 0;
    std::uint32_t wParam = 0;
    std::uint32_t lParam = 0;

    bool operator==(const WindowMessage&) const = default;
};

// What a window does with what arrives; both run on the dialog thread, from its message loop.
struct WindowProcedure {
    std::function<void(const WindowMessage&)> onMessage;
    // WM_COPYDATA: the result goes back to the sender.
    std::function<std::uint32_t(std::uint32_t dwData, std::span<const std::byte>)> onCopyData;
};

// Without a connection to the other programs a window lives alone: posting to itself still works.
class WindowMessages {
  public:
    virtual ~WindowMessages() = default;

    // Dialog thread. None when the limit of windows is reached.
    virtual WindowHandle CreateWindow(std::string_view title, WindowProcedure procedure) = 0;
    virtual void DestroyWindow(WindowHandle window) = 0;
    virtual void SetWindowText(WindowHandle window, std::string_view title) = 0;

    // The same name gives the same number throughout this program; other programs have numbers of their own,
    // the name travels. 0 when the limit of names is reached. Any thread.
    virtual MessageId RegisterWindowMessage(std::string_view name) = 0;

    // To one window, or with Broadcast to every window of every program, one's own included. True when the
    // message is on its way, which says nothing of its arrival. Any thread; never waits.
    virtual bool PostMessage(WindowHandle window, const WindowMessage& message) = 0;

    // The window of that title, of any program; None when there is none. Any thread.
    virtual WindowHandle FindWindow(std::string_view title) = 0;

    // WM_COPYDATA to another program's window: waits for the result, nothing when none came. Not for the
    // dialog thread.
    virtual std::optional<std::uint32_t> SendCopyData(WindowHandle window, std::uint32_t dwData,
                                                      std::span<const std::byte> data) = 0;

    static constexpr std::size_t messageNameLimit = 256;  // characters of a name, and number of names
};

}  // namespace varkel
