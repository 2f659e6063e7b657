// The running program, as any other program of the unit reaches it: its window and the objects it shares.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "client/exit_code.h"
#include "client/shared_data.h"
#include "platform/linux/bus.h"
#include "platform/linux/bus_window_messages.h"
#include "platform/linux/linux_runtime.h"
#include "platform/linux/shm_named_objects.h"
#include "platform/linux/unit_settings.h"
#include "platform/message_loop.h"

namespace varkel::client {

// One thread, the one that runs the loop if anybody does.
class PhoneProgram {
  public:
    PhoneProgram(LinuxRuntime& runtime, MessageLoop& loop, const UnitSettings& settings);

    // Looks the window up whose handle stands in the shared block. NotRunning, and it has been said why, when
    // there is none.
    ExitCode Connect();
    // Whether that window still exists. The block keeps the handle of a program that has gone.
    bool Running();

    // On its way to the window, in the order of the calls.
    bool Post(MessageId message, std::uint32_t wParam = 0);
    bool Post(std::string_view registeredName, std::uint32_t wParam = 0);
    // WM_COPYDATA. Nothing when the program does not take the block.
    std::optional<std::uint32_t> SendCopyData(std::uint32_t dwData, std::span<const std::byte> data);

    LinuxRuntime& GetRuntime() { return m_runtime; }
    NamedObjects& Objects() { return m_objects; }
    WindowMessages& Windows() { return m_windows; }
    SharedData& Data() { return m_data; }

  private:
    LinuxRuntime& m_runtime;
    ShmNamedObjects m_objects;
    SharedData m_data;
    Bus m_bus;
    BusWindowMessages m_windows;
    WindowHandle m_window = WindowHandle::None;
};

}  // namespace varkel::client
