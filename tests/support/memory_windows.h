// Windows inside one process. What is posted to the head unit's main window, or to all, is kept in order.
#pragma once

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/message_loop.h"
#include "platform/window_messages.h"

namespace varkel::test {

inline constexpr WindowHandle mainWindow{0x100};

class MemoryWindows final : public WindowMessages {
  public:
    explicit MemoryWindows(MessageLoop& loop) : m_loop(loop) {}

    WindowHandle CreateWindow(std::string_view title, WindowProcedure procedure) override {
        std::lock_guard lock(m_mutex);
        const WindowHandle handle{++m_lastHandle};
        m_windows[handle] = {std::string(title), std::move(procedure)};
        return handle;
    }

    // The window of another program.
    WindowHandle AddProgram(std::function<void(const WindowMessage&)> onMessage) {
        WindowProcedure procedure;
        procedure.onMessage = std::move(onMessage);
        return CreateWindow("", std::move(procedure));
    }

    void DestroyWindow(WindowHandle window) override {
        std::lock_guard lock(m_mutex);
        m_windows.erase(window);
    }

    void SetWindowText(WindowHandle window, std::string_view title) override {
        std::lock_guard lock(m_mutex);
        m_windows[window].title = title;
    }

    MessageId RegisterWindowMessage(std::string_view name) override {
        std::lock_guard lock(m_mutex);
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            if (m_names[i] == name) return firstRegisteredMessage + static_cast<MessageId>(i);
        }
        m_names.emplace_back(name);
        return firstRegisteredMessage + static_cast<MessageId>(m_names.size() - 1);
    }

    bool PostMessage(WindowHandle window, const WindowMessage& message) override {
        std::vector<WindowHandle> receivers;
        {
            std::lock_guard lock(m_mutex);
            if (window == mainWindow || window == WindowHandle::Broadcast) m_posted.push_back(Text(message));
            for (const auto& [handle, own] : m_windows) {
                if (handle == window || window == WindowHandle::Broadcast) receivers.push_back(handle);
            }
        }
        for (const WindowHandle receiver : receivers) {
            m_loop.Post([this, receiver, message] { Deliver(receiver, message); });
        }
        return true;
    }

    WindowHandle FindWindow(std::string_view title) override {
        std::lock_guard lock(m_mutex);
        for (const auto& [handle, window] : m_windows) {
            if (window.title == title) return handle;
        }
        return WindowHandle::None;
    }

    std::optional<std::uint32_t> SendCopyData(WindowHandle, std::uint32_t,
                                              std::span<const std::byte>) override {
        return std::nullopt;
    }

    // What another program's SendCopyData comes back with; nothing when there is no such window. Dialog
    // thread.
    std::optional<std::uint32_t> CopyData(std::string_view title, std::uint32_t dwData,
                                          std::span<const std::byte> data) {
        std::function<std::uint32_t(std::uint32_t, std::span<const std::byte>)> handler;
        const WindowHandle window = FindWindow(title);
        {
            std::lock_guard lock(m_mutex);
            const auto found = m_windows.find(window);
            if (found != m_windows.end()) handler = found->second.procedure.onCopyData;
        }
        return handler ? std::optional(handler(dwData, data)) : std::nullopt;
    }

    void Forget() {
        std::lock_guard lock(m_mutex);
        m_posted.clear();
    }

    // How often "NAME wParam lParam" reached the main window or all windows.
    int CountPosted(std::string_view text) {
        std::lock_guard lock(m_mutex);
        return static_cast<int>(std::count(m_posted.begin(), m_posted.end(), text));
    }

  private:
    struct Window {
        std::string title;
        WindowProcedure procedure;
    };

    std::string Text(const WindowMessage& message) const {
        const std::size_t index = message.id - firstRegisteredMessage;
        const std::string name = index < m_names.size() ? m_names[index] : std::to_string(message.id);
        return name + " " + std::to_string(message.wParam) + " " + std::to_string(message.lParam);
    }

    void Deliver(WindowHandle window, const WindowMessage& message) {
        std::function<void(const WindowMessage&)> handler;
        {
            std::lock_guard lock(m_mutex);
            const auto found = m_windows.find(window);
            if (found != m_windows.end()) handler = found->second.procedure.onMessage;
        }
        if (handler) handler(message);
    }

    MessageLoop& m_loop;
    std::mutex m_mutex;
    std::uint32_t m_lastHandle = 0x200;
    std::map<WindowHandle, Window> m_windows;
    std::vector<std::string> m_names;
    std::vector<std::string> m_posted;
};

}  // namespace varkel::test
