// Programs started without a shell.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "platform/linux/file_descriptor.h"

namespace varkel {

// Cuts a command at its blanks; a part in double quotes may hold blanks. At most 64 parts; none when there
// are more or a quote stays open.
std::vector<std::string> SplitCommand(std::string_view command);

// Descriptors that a program gets; -1 leaves it nothing to read, and lets it write where this program writes.
struct ChildStreams {
    int input = -1;
    int output = -1;
    int errors = -1;
};

// A running program, the leader of a process group of its own. One thread at a time.
class ChildProcess {
  public:
    // Looks for the program on the PATH. It starts with no signal blocked.
    static std::optional<ChildProcess> Start(const std::vector<std::string>& command,
                                             const ChildStreams& streams = {});
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    // A program that still runs is let go: a later Start collects it when it has ended.
    ~ChildProcess();

    // A descriptor that becomes readable when the program ends.
    int EndDescriptor() const { return m_end.Get(); }
    // True when it ended within `timeout`.
    bool Wait(std::chrono::microseconds timeout);
    // Its exit code once Wait was true; -1 when a signal ended it.
    int ExitCode() const { return m_exitCode; }
    // Asks the program, and those it has started in its group, to end (SIGTERM).
    void Terminate();
    // Ends them at once.
    void Kill();

  private:
    ChildProcess(pid_t pid, FileDescriptor end) : m_pid(pid), m_end(std::move(end)) {}

    pid_t m_pid = -1;  // -1 once it has been collected
    FileDescriptor m_end;
    int m_exitCode = -1;
};

}  // namespace varkel
