// A message bus of a test's own.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/bus.h"
#include "tests/platform/own_server.h"
#include "tests/support/scratch.h"

namespace varkel::test {

class PrivateBus {
  public:
    // `policy` are the rules of a bus configuration; without them everybody may do everything.
    explicit PrivateBus(std::string_view policy = {}) {
        const std::string file = m_directory / "bus.conf";
        WriteFile(file, "<busconfig><type>system</type><auth>EXTERNAL</auth><listen>" + Address() +
                            "</listen>" + std::string(policy) + "</busconfig>");
        m_daemon.emplace(
            std::vector<std::string>{"dbus-daemon", policy.empty() ? "--session" : "--config-file=" + file,
                                     "--nofork", "--nosyslog", "--print-address", "--address=" + Address()});
    }

    void Stop() { m_daemon->Stop(); }

    std::string Address() const { return "unix:path=" + (m_directory / "bus"); }
    BusOptions Options() const { return {BusKind::Address, Address()}; }

  private:
    ScratchDirectory m_directory;
    std::optional<OwnServer> m_daemon;
};

}  // namespace varkel::test
