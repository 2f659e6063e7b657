#include "platform/linux/linux_processes.h"

#include <mutex>
#include <utility>

#include "platform/linux/child_process.h"
#include "platform/linux/device_path.h"

namespace varkel {

namespace {

class LinuxProcess final : public Process {
  public:
    LinuxProcess(LinuxRuntime& runtime, ChildProcess child) : m_runtime(runtime), m_child(std::move(child)) {}

    WaitResult Wait(Ticks timeout) override {
        // Polled outside the lock, so that another thread can end the program meanwhile.
        pollfd ended{m_child.EndDescriptor(), POLLIN, 0};
        Poll({&ended, 1}, m_runtime.RealTime(timeout));
        std::lock_guard lock(m_mutex);
        return m_child.Wait(std::chrono::microseconds(0)) ? WaitResult::Object0 : WaitResult::Timeout;
    }

    void TerminateProcess() override {
        std::lock_guard lock(m_mutex);
        m_child.Kill();
    }

  private:
    LinuxRuntime& m_runtime;
    std::mutex m_mutex;
    ChildProcess m_child;
};

}  // namespace

LinuxProcesses::LinuxProcesses(LinuxRuntime& runtime,
                               std::map<std::string, std::vector<std::string>> programs)
    : m_runtime(runtime), m_programs(std::move(programs)) {}

std::shared_ptr<Process> LinuxProcesses::CreateProcess(std::string_view path) {
    const auto program = m_programs.find(PlainDevicePath(path));
    if (program == m_programs.end()) return nullptr;
    auto child = ChildProcess::Start(program->second);
    return child ? std::make_shared<LinuxProcess>(m_runtime, std::move(*child)) : nullptr;
}

}  // namespace varkel
