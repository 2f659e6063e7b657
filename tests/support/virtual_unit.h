// The simulated unit inside virtual time: a thread lets the module act, the serial device and the driver
// library lead to it.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/kovex_drv_api.h"
#include "platform/runtime.h"
#include "simulator/simulated_unit.h"
#include "tests/support/virtual_runtime.h"
#include "tests/support/virtual_serial.h"

namespace varkel::test {

class VirtualUnit final : public KovexDrvApi {
  public:
    VirtualUnit(VirtualRuntime& runtime, VirtualSerial& serial, const sim::UnitConfig& config,
                std::uint64_t seed);
    ~VirtualUnit() override;

    // A console command; what it printed.
    std::string Command(std::string_view line);

    // What the modem was sent and the unit was told, in order: "AT+CSQ", "Set3GPower 1".
    std::vector<std::string> TakeTrace();
    // How often a line stands in the trace that was not taken yet.
    int Count(std::string_view line);
    int SuspendLocks();
    // Sound goes to and comes from the unit itself.
    bool AudioAtRest();

  private:
    bool Call(DrvFunction function, int& value) override;
    void HostWrites(std::string_view bytes);
    void Act();

    VirtualRuntime& m_runtime;
    VirtualSerial& m_serial;
    std::shared_ptr<Event> m_wake;
    std::mutex m_mutex;
    sim::SimulatedUnit m_unit;
    std::vector<std::string> m_trace;
    bool m_ending = false;
    std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel::test
