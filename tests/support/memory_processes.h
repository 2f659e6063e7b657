// Programs that run until a test ends them.
#pragma once

#include <memory>
#include <vector>

#include "platform/processes.h"

namespace varkel::test {

class MemoryProcess final : public Process {
  public:
    explicit MemoryProcess(Runtime& runtime) : ended(runtime.CreateEvent(EventReset::Manual)) {}
    WaitResult Wait(Ticks timeout) override { return ended->Wait(timeout); }
    void TerminateProcess() override { ended->Set(); }

    std::shared_ptr<Event> ended;
};

class MemoryProcesses final : public Processes {
  public:
    explicit MemoryProcesses(Runtime& runtime) : m_runtime(runtime) {}
    std::shared_ptr<Process> CreateProcess(std::string_view) override {
        started.push_back(std::make_shared<MemoryProcess>(m_runtime));
        return started.back();
    }

    std::vector<std::shared_ptr<MemoryProcess>> started;

  private:
    Runtime& m_runtime;
};

}  // namespace varkel::test
