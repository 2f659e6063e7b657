// The telephone program as its clients see it: the window, the shared block, the events.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "modem/shared_block.h"
#include "platform/linux/bus_window_messages.h"
#include "platform/linux/shm_named_objects.h"

namespace varkel::test {

// Lives on the dialog thread. It keeps what it was sent and answers requests with what it knows; "" is known
// of nothing and answers nothing.
class PhoneDouble {
  public:
    PhoneDouble(LinuxRuntime& runtime, MessageLoop& loop, Log& log, const BusOptions& bus,
                const std::string& prefix, std::string_view title = "3Gwindow")
        : m_objects(runtime, prefix), m_data(m_objects, log), m_bus(bus, {}), m_windows(m_bus, loop, {}) {
        for (const char* const name : {"3Gwindow_SHOW", "3Gwindow_HIDE", "3Gwindow_QUIT", "Network_interface",
                                       "UM_QX_CALL", "UM_CALLIN", "LANGUAGE_CHANGE"})
            m_names.emplace_back(m_windows.RegisterWindowMessage(name), name);
        m_window =
            m_windows.CreateWindow(title, {[this](const WindowMessage& message) { OnMessage(message); },
                                           [this](std::uint32_t dwData, std::span<const std::byte> data) {
                                               return OnCopyData(dwData, data);
                                           }});
        m_data.SetWindowHandle(static_cast<std::uint32_t>(m_window));
    }
    ~PhoneDouble() { m_windows.DestroyWindow(m_window); }

    // "3Gwindow_SHOW 0 0" or "1002 0 0" (the number behind WM_USER).
    std::vector<std::string> received;
    std::vector<WindowHandle> listeners;
    std::string imsi;
    std::string imei;
    std::optional<ConnectionStatus> status;
    std::function<void()> onQuit;
    // A message to be sent: its bytes, and whether program and network take it.
    std::string copied;
    bool accepts = true;
    bool sends = true;

    void Notify(std::uint32_t linkStatus, std::uint32_t reason) {
        for (const WindowHandle listener : listeners)
            m_windows.PostMessage(listener, {WM_USER + 542, linkStatus, reason});
    }
    void Broadcast(std::string_view name) {
        m_windows.PostMessage(WindowHandle::Broadcast, {m_windows.RegisterWindowMessage(name), 0, 0});
    }

  private:
    void OnMessage(const WindowMessage& message) {
        std::string text = std::to_string(message.id - WM_USER);
        for (const auto& [id, name] : m_names) {
            if (id == message.id) text = name;
        }
        received.push_back(text + " " + std::to_string(message.wParam) + " " +
                           std::to_string(message.lParam));
        const WindowHandle window{message.wParam};
        if (text == "1000") {
            listeners.push_back(window);
            m_windows.PostMessage(window, {WM_USER + 542, 2, 11});
        }
        if (text == "1001") std::erase(listeners, window);
        if (text == "1002" && !imsi.empty()) m_data.AnswerImsi(imsi);
        if (text == "1003" && !imei.empty()) m_data.AnswerImei(imei);
        if (text == "1005" && status && m_data.SetConnectionStatus(*status)) m_data.SignalResponse();
        if (text == "3Gwindow_QUIT" && onQuit) onQuit();
    }

    std::uint32_t OnCopyData(std::uint32_t dwData, std::span<const std::byte> data) {
        received.push_back("copy-data " + std::to_string(dwData));
        copied.assign(reinterpret_cast<const char*>(data.data()), data.size());
        if (sends) m_objects.CreateEvent("SendSM_SUS")->Set();
        return accepts ? 1 : 0;
    }

    ShmNamedObjects m_objects;
    CGSMData m_data;
    Bus m_bus;
    BusWindowMessages m_windows;
    std::vector<std::pair<MessageId, std::string>> m_names;
    WindowHandle m_window = WindowHandle::None;
};

}  // namespace varkel::test
