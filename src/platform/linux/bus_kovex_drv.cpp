#include "platform/linux/bus_kovex_drv.h"

#include <chrono>
#include <systemd/sd-bus.h>

namespace varkel {

bool BusKovexDrv::Call(DrvFunction function, int& value) {
    constexpr auto patience = std::chrono::milliseconds(longestCall);
    const DrvEntry& entry = drvTable[static_cast<std::size_t>(function)];
    int result = 0;
    const auto start = std::chrono::steady_clock::now();
    const bool answered = m_bus.Call(
        {kovexDrvBusName, kovexDrvPath, kovexDrvInterface, std::string(entry.name)},
        [&](sd_bus_message* m) {
            return entry.kind == DrvKind::Set ? sd_bus_message_append(m, "i", value) : 0;
        },
        [&](sd_bus_message* m) {
            return entry.kind == DrvKind::Get ? sd_bus_message_read(m, "i", &result) : 0;
        },
        patience);
    if (entry.kind != DrvKind::Get) return answered;
    const bool late = !answered && std::chrono::steady_clock::now() - start >= patience;
    return m_answers.With([&](auto& answers) {
        Answer& last = answers[static_cast<std::size_t>(function)];
        if (answered) {
            last = {.value = result, .lateOnes = 0};
        } else if (!late || !last.value || ++last.lateOnes > mostLate) {
            last.value.reset();
            return false;
        }
        value = *last.value;
        return true;
    });
}

}  // namespace varkel
