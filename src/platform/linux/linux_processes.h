// The unit's programs as programs of this system.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/linux/linux_runtime.h"
#include "platform/processes.h"

namespace varkel {

class LinuxProcesses final : public Processes {
  public:
    // `programs` gives the command of a device path in the spelling of PlainDevicePath; a path that is not
    // there cannot be started.
    LinuxProcesses(LinuxRuntime& runtime, std::map<std::string, std::vector<std::string>> programs);

    // TerminateProcess ends the program with all that it has started in its process group. A program whose
    // handle is dropped goes on.
    std::shared_ptr<Process> CreateProcess(std::string_view path) override;

  private:
    LinuxRuntime& m_runtime;
    const std::map<std::string, std::vector<std::string>> m_programs;
};

}  // namespace varkel
