// A message bus of a test's own.
#pragma once

#include <optional>
#include <string>
#include <unistd.h>

#include "platform/linux/bus.h"
#include "platform/linux/child_process.h"
#include "platform/linux/file_descriptor.h"
#include "tests/support/scratch.h"

namespace varkel::test {

class PrivateBus {
  public:
    // `policy` are the rules of a bus configuration; without them everybody may do everything.
    explicit PrivateBus(std::string_view policy = {}) {
        if (!policy.empty()) {
            WriteFile(m_directory / "bus.conf",
                      "<busconfig><type>system</type><auth>EXTERNAL</auth><listen>" + Address() +
                          "</listen>" + std::string(policy) + "</busconfig>");
        }
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        const FileDescriptor ready(ends[0]);
        FileDescriptor output(ends[1]);
        // A test that crashes takes its bus along.
        m_daemon.emplace(*ChildProcess::Start(
            {"setpriv", "--pdeathsig", "KILL", "dbus-daemon",
             policy.empty() ? "--session" : "--config-file=" + (m_directory / "bus.conf"), "--nofork",
             "--nosyslog", "--print-address", "--address=" + Address()},
            {.output = output.Get()}));
        output.Reset();
        // It prints its address once it listens.
        char byte = 0;
        if (read(ready.Get(), &byte, 1) != 1) std::abort();
    }
    ~PrivateBus() { Stop(); }

    void Stop() {
        if (!m_daemon) return;
        m_daemon->Kill();
        m_daemon->Wait(forever);
        m_daemon.reset();
    }

    std::string Address() const { return "unix:path=" + (m_directory / "bus"); }
    BusOptions Options() const { return {BusKind::Address, Address()}; }

  private:
    ScratchDirectory m_directory;
    std::optional<ChildProcess> m_daemon;
};

}  // namespace varkel::test
