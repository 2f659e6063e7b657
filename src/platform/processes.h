// Programs that the unit starts and watches.
#pragma once

#include <memory>
#include <string_view>

#include "platform/runtime.h"

namespace varkel {

class Process {
  public:
    virtual ~Process() = default;
    // Waits until the program has ended; Object0 or Timeout.
    virtual WaitResult Wait(Ticks timeout) = 0;
    virtual void TerminateProcess() = 0;
};

class Processes {
  public:
    virtual ~Processes() = default;
    // Starts the program of that device path; null when it cannot be started. Any thread.
    virtual std::shared_ptr<Process> CreateProcess(std::string_view path) = 0;
};

}  // namespace varkel
