// The head unit's driver library as a service of another program on the message bus.
//
// Each function of drvTable is a method of that name of the object /org/varkel/KovexDrv of the bus name
// org.varkel.KovexDrv; getters have one result "i", setters one argument "i".
#pragma once

#include <array>
#include <optional>

#include "platform/guarded.h"
#include "platform/kovex_drv_api.h"
#include "platform/linux/bus.h"

namespace varkel {

inline constexpr const char* kovexDrvBusName = "org.varkel.KovexDrv";
inline constexpr const char* kovexDrvPath = "/org/varkel/KovexDrv";
inline constexpr const char* kovexDrvInterface = "org.varkel.KovexDrv1";

// An error, or no answer within `longestCall`, is a failed function. A getter whose answer is late tells its
// last one instead, `mostLate` times in a row: a unit that is busy has not lost its modem.
class BusKovexDrv final : public KovexDrvApi {
  public:
    explicit BusKovexDrv(Bus& bus) : m_bus(bus) {}

    static constexpr int mostLate = 3;

  protected:
    bool Call(DrvFunction function, int& value) override;

  private:
    struct Answer {
        std::optional<int> value;
        int lateOnes = 0;
    };

    Bus& m_bus;
    Guarded<std::array<Answer, drvTable.size()>> m_answers;  // of the getters
};

}  // namespace varkel
