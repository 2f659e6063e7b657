// Offers a driver library to the unit's programs on the message bus: for the simulated unit, and for
// integrators whose library lives in a program of its own.
#pragma once

#include <functional>
#include <memory>

#include "platform/kovex_drv_api.h"
#include "platform/linux/bus.h"

namespace varkel {

class KovexDrvExport {
  public:
    // Carries a function out; `value` is the argument of a setter and takes the result of a getter. False is
    // answered with an error.
    using Handler = std::function<bool(DrvFunction function, int& value)>;
    // Where the handler runs: called on the bus thread with work that it hands to another thread, which runs
    // it later. False when it cannot; MessageLoop::Post is of this kind.
    using Executor = std::function<bool(std::function<void()> work)>;

    KovexDrvExport(Bus& bus, Handler handler, Executor executor);
    // Work that the executor still holds does not call the handler any more; one that runs on another thread
    // may still be inside it.
    ~KovexDrvExport();

    // Whether the bus name is this program's. When another program had it first, that one answers.
    bool Exported() const { return m_exported; }

  private:
    struct Service;

    Bus& m_bus;
    const std::shared_ptr<Service> m_service;
    bool m_exported = false;
};

}  // namespace varkel
