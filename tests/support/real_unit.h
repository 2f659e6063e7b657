// The simulated unit on a pseudo-terminal, in real time.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "platform/kovex_drv_api.h"
#include "platform/linux/file_descriptor.h"
#include "platform/linux/linux_runtime.h"
#include "simulator/program/pty.h"
#include "simulator/simulated_unit.h"

namespace varkel::test {

// Its time is the runtime's, which may run faster than the clock.
class RealUnit final : public KovexDrvApi {
  public:
    // `link` is where the tty appears. `speed` is the runtime's.
    RealUnit(LinuxRuntime& runtime, unsigned speed, std::string link, const sim::UnitConfig& config);
    ~RealUnit() override;

    std::string Command(std::string_view line);
    int SuspendLocks();
    const std::string& Link() const { return m_link; }

  private:
    bool Call(DrvFunction function, int& value) override;
    void Serve();
    // Lets the modem act and moves bytes; how long nothing will happen, in real ms, -1 for ever. Under the
    // lock.
    int Act();
    sim::Millis Now();

    LinuxRuntime& m_runtime;
    const unsigned m_speed;
    const std::string m_link;
    WakeUp m_wake;
    std::mutex m_mutex;
    Ticks m_lastTicks;
    sim::Millis m_now = 0;
    sim::SimulatedUnit m_unit;
    std::unique_ptr<sim::Pty> m_pty;
    bool m_ending = false;
    std::thread m_thread;
};

}  // namespace varkel::test
