#include "client/phone_program.h"

namespace varkel::client {

PhoneProgram::PhoneProgram(LinuxRuntime& runtime, MessageLoop& loop, const UnitSettings& settings)
    : m_runtime(runtime),
      m_objects(runtime, settings.objectPrefix),
      m_data(m_objects),
      m_bus(settings.bus, [](std::string_view problem) { Fail(ExitCode::NotRunning, problem); }),
      m_windows(m_bus, loop, {}) {}

ExitCode PhoneProgram::Connect() {
    if (!m_bus.Available()) return ExitCode::NotRunning;
    const auto data = m_data.Read();
    if (!data) return Fail(ExitCode::Failed, "the shared block cannot be read");
    m_window = WindowHandle{data->windowHandle};
    return Running() ? ExitCode::Ok : Fail(ExitCode::NotRunning, "varkel is not running on this unit");
}

bool PhoneProgram::Running() {
    return m_window != WindowHandle::None && m_windows.GetWindowText(m_window) == "3Gwindow";
}

bool PhoneProgram::Post(MessageId message, std::uint32_t wParam) {
    return m_windows.PostMessage(m_window, {message, wParam, 0});
}

bool PhoneProgram::Post(std::string_view registeredName, std::uint32_t wParam) {
    return Post(m_windows.RegisterWindowMessage(registeredName), wParam);
}

std::optional<std::uint32_t> PhoneProgram::SendCopyData(std::uint32_t dwData,
                                                        std::span<const std::byte> data) {
    return m_windows.SendCopyData(m_window, dwData, data);
}

}  // namespace varkel::client
