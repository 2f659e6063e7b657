#include "simulator/program/unit_bus.h"

#include <array>
#include <map>
#include <utility>

#include "platform/linux/bus_window_messages.h"

namespace varkel::sim {

namespace {

// What the programs of a unit send to its main window, or to all windows.
constexpr std::array<std::string_view, 13> messageNames{
    "3G_OPEN_END",         "3Gwindow_SHOW",       "3Gwindow_HIDE",    "3Gwindow_QUIT", "Network_interface",
    "UM_CALLIN",           "UM_CALLHOOKED",       "UM_QX_SIGNALSTAT", "UM_QX_CALL",    "LANGUAGE_CHANGE",
    "NEED_CLOSE_USB_HOST", "UM_3G_SIMCARDDETACH", "_WAV_CALL_STATUS",
};

std::string TextOf(const WindowMessage& message, const std::map<MessageId, std::string>& names) {
    const auto name = names.find(message.id);
    const bool user = message.id >= WM_USER && message.id < firstRegisteredMessage;
    const std::string shown = name != names.end() ? name->second
                              : user              ? "WM_USER+" + std::to_string(message.id - WM_USER)
                                                  : "message " + std::to_string(message.id);
    return "main window: " + shown + " " + std::to_string(message.wParam) + ", " +
           std::to_string(message.lParam);
}

}  // namespace

UnitBus::UnitBus(TaskQueue& tasks, UnitBusHooks hooks)
    : m_tasks(tasks),
      m_hooks(std::make_shared<UnitBusHooks>(std::move(hooks))),
      m_bus(std::make_unique<Bus>(BusOptions(),
                                  [this](std::string_view problem) { Say("bus: " + std::string(problem)); })),
      m_windowMade(m_runtime.CreateEvent(EventReset::Manual)) {
    m_driver = std::make_unique<KovexDrvExport>(
        *m_bus,
        [shared = m_hooks](DrvFunction function, int& value) { return shared->call(function, value); },
        [this](std::function<void()> work) { return m_tasks.Post(std::move(work)); });
    m_thread = m_runtime.CreateThread({.name = "window"}, [this] { ServeWindow(); });
    if (m_thread) m_windowMade->Wait(infiniteTicks);
}

UnitBus::~UnitBus() {
    m_driver.reset();
    if (m_thread) {
        m_loop->Quit();
        m_thread->Wait(infiniteTicks);
    }
    m_bus.reset();
    m_hooks->say = nullptr;
}

void UnitBus::Say(std::string text) {
    m_tasks.Post([hooks = m_hooks, said = std::move(text)] {
        if (hooks->say) hooks->say(said);
    });
}

void UnitBus::ServeWindow() {
    m_loop = std::make_unique<MessageLoop>(m_runtime);
    {
        BusWindowMessages windows(
            *m_bus, *m_loop, [this](std::string_view problem) { Say("window: " + std::string(problem)); });
        std::map<MessageId, std::string> names;
        for (const std::string_view name : messageNames)
            names[windows.RegisterWindowMessage(name)] = name;
        WindowProcedure procedure;
        procedure.onMessage = [this, &names](const WindowMessage& message) { Say(TextOf(message, names)); };
        procedure.onCopyData = [](std::uint32_t, std::span<const std::byte>) { return 0u; };
        m_mainWindow = static_cast<int>(windows.CreateWindow("MainWindow", std::move(procedure)));
        m_windowMade->Set();
        m_loop->Run([] { return false; });
    }
}

}  // namespace varkel::sim
