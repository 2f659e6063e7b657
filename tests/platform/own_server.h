// A server program of a test's own.
#pragma once

#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/linux/child_process.h"
#include "platform/linux/file_descriptor.h"

namespace varkel::test {

// A test that crashes takes its server along.
class OwnServer {
  public:
    // Waits for the line that the server writes once it listens.
    explicit OwnServer(std::vector<std::string> command) {
        command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL"});
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        const FileDescriptor ready(ends[0]);
        FileDescriptor output(ends[1]);
        m_process.emplace(*ChildProcess::Start(command, {.output = output.Get()}));
        output.Reset();
        for (char byte = 0; byte != '\n'; m_line += byte) {
            if (read(ready.Get(), &byte, 1) != 1) std::abort();
        }
    }
    ~OwnServer() { Stop(); }

    void Stop() {
        if (!m_process) return;
        m_process->Kill();
        m_process->Wait(forever);
        m_process.reset();
    }

    const std::string& Line() const { return m_line; }

  private:
    std::optional<ChildProcess> m_process;
    std::string m_line;
};

}  // namespace varkel::test
