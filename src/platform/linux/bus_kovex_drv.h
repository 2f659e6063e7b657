// The head unit's driver library as a service of another program on the message bus.
//
// Each function of drvTable is a method of that name of the object /org/varkel/KovexDrv of the bus name
// org.varkel.KovexDrv; getters have one result "i", setters one argument "i".
#pragma once

#include "platform/kovex_drv_api.h"
#include "platform/linux/bus.h"

namespace varkel {

inline constexpr const char* kovexDrvBusName = "org.varkel.KovexDrv";
inline constexpr const char* kovexDrvPath = "/org/varkel/KovexDrv";
inline constexpr const char* kovexDrvInterface = "org.varkel.KovexDrv1";

// An error, or no answer within `longestCall`, is a failed function.
class BusKovexDrv final : public KovexDrvApi {
  public:
    explicit BusKovexDrv(Bus& bus) : m_bus(bus) {}

  protected:
    bool Call(DrvFunction function, int& value) override;

  private:
    Bus& m_bus;
};

}  // namespace varkel
