#include "client/watch.h"

#include <map>
#include <string>

namespace varkel::client {

namespace {

constexpr MessageId addListenWnd = WM_USER + 1000;
constexpr MessageId removeListenWnd = WM_USER + 1001;
constexpr MessageId linkNotification = WM_USER + 542;

constexpr TimerId lookTimer = 1;
constexpr Ticks lookPeriod = 2000;

// What the programs of a unit broadcast.
constexpr std::string_view broadcasts[] = {
    "UM_CALLIN",       "UM_CALLHOOKED",       "_WAV_CALL_STATUS",
    "LANGUAGE_CHANGE", "NEED_CLOSE_USB_HOST", "UM_3G_SIMCARDDETACH",
};

std::string_view Meaning(std::uint32_t reason) {
    switch (reason) {
        case 2: return ", call or low power";
        case 11: return ", SIM not usable";
        case 12: return ", poor signal";
        case 16: return ", the modem does not answer";
        default: return "";
    }
}

std::string LinkLine(std::uint32_t status, std::uint32_t reason) {
    constexpr std::uint32_t works = 1;
    if (status == works) return "link up";
    return "link down " + std::to_string(reason) + std::string(Meaning(reason));
}

class Watcher {
  public:
    Watcher(PhoneProgram& program, MessageLoop& loop) : m_program(program), m_loop(loop) {
        WindowMessages& windows = program.Windows();
        for (const std::string_view name : broadcasts)
            m_names[windows.RegisterWindowMessage(name)] = name;
        m_window = windows.CreateWindow("", {[this](const WindowMessage& message) { OnMessage(message); },
                                             [](std::uint32_t, std::span<const std::byte>) { return 0u; }});
    }

    ExitCode Run() {
        const auto window = static_cast<std::uint32_t>(m_window);
        if (!m_program.Post(addListenWnd, window))
            return Fail(ExitCode::NotRunning, "the request cannot be sent");
        m_loop.SetTimer(lookTimer, lookPeriod, [this] {
            if (!m_program.Running()) End(Fail(ExitCode::NotRunning, "varkel has ended"));
        });
        m_loop.Run([] { return false; });
        m_loop.KillTimer(lookTimer);
        m_program.Post(removeListenWnd, window);
        m_program.Windows().DestroyWindow(m_window);
        return m_result;
    }

  private:
    void OnMessage(const WindowMessage& message) {
        if (message.id == linkNotification) Print(LinkLine(message.wParam, message.lParam));
        if (const auto name = m_names.find(message.id); name != m_names.end()) {
            Print(std::string(name->second) + " " + std::to_string(message.wParam) + " " +
                  std::to_string(message.lParam));
        }
    }

    void Print(const std::string& line) {
        if (!PrintLine(line)) End(ExitCode::Failed);
    }

    void End(ExitCode result) {
        m_result = result;
        m_loop.Quit();
    }

    PhoneProgram& m_program;
    MessageLoop& m_loop;
    std::map<MessageId, std::string_view> m_names;
    WindowHandle m_window = WindowHandle::None;
    ExitCode m_result = ExitCode::Ok;
};

}  // namespace

ExitCode Watch(PhoneProgram& program, MessageLoop& loop) {
    return Watcher(program, loop).Run();
}

}  // namespace varkel::client
