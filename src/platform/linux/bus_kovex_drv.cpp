#include "platform/linux/bus_kovex_drv.h"

#include <systemd/sd-bus.h>

namespace varkel {

bool BusKovexDrv::Call(DrvFunction function, int& value) {
    const DrvEntry& entry = drvTable[static_cast<std::size_t>(function)];
    int result = 0;
    const bool answered = m_bus.Call(
        {kovexDrvBusName, kovexDrvPath, kovexDrvInterface, std::string(entry.name)},
        [&](sd_bus_message* m) {
            return entry.kind == DrvKind::Set ? sd_bus_message_append(m, "i", value) : 0;
        },
        [&](sd_bus_message* m) {
            return entry.kind == DrvKind::Get ? sd_bus_message_read(m, "i", &result) : 0;
        },
        std::chrono::milliseconds(longestCall));
    if (answered && entry.kind == DrvKind::Get) value = result;
    return answered;
}

}  // namespace varkel
