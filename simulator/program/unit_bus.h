// The simulated unit on the message bus: its driver library and its main window.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/kovex_drv_api.h"
#include "platform/linux/bus.h"
#include "platform/linux/kovex_drv_export.h"
#include "platform/linux/linux_runtime.h"
#include "platform/message_loop.h"
#include "platform/runtime.h"
#include "simulator/program/task_queue.h"

namespace varkel::sim {

// The hooks run on the main thread, out of its task queue.
struct UnitBusHooks {
    // As KovexDrvExport::Handler.
    std::function<bool(DrvFunction, int&)> call;
    std::function<void(std::string_view)> say;
};

// The window lives on a thread of its own, whose message loop it is. Created and destroyed on the main
// thread; the task queue outlives it, and runs no more of its tasks afterwards.
class UnitBus {
  public:
    UnitBus(TaskQueue& tasks, UnitBusHooks hooks);
    ~UnitBus();
    UnitBus(const UnitBus&) = delete;
    UnitBus& operator=(const UnitBus&) = delete;

    bool Available() const { return m_bus->Available(); }
    // False when another program is the driver library already.
    bool Exported() const { return m_driver->Exported(); }
    // The main window's handle, for GetMainHandle.
    int MainWindow() const { return m_mainWindow; }

  private:
    void Say(std::string text);
    void ServeWindow();

    TaskQueue& m_tasks;
    // Shared with the tasks, which may outlive this.
    std::shared_ptr<UnitBusHooks> m_hooks;
    LinuxRuntime m_runtime;
    std::unique_ptr<Bus> m_bus;
    std::unique_ptr<KovexDrvExport> m_driver;
    std::shared_ptr<Event> m_windowMade;
    std::unique_ptr<MessageLoop> m_loop;  // made and used by the window's thread
    std::shared_ptr<Thread> m_thread;
    int m_mainWindow = 0;
};

}  // namespace varkel::sim
