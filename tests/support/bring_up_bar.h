// How long opening the module may take on the simulated unit: the required pauses, plus for each awaited
// answer the module's time and 110 ms (the line's quiet time and the reader's look at its stop event), plus 1
// %.
#pragma once

#include <cstdint>

#include "simulator/modem_settings.h"

namespace varkel::test {

// Milliseconds from Set3GPower to "3G_OPEN_END", without a PIN.
constexpr std::uint64_t BringUpBar(const sim::ModemTimes& module) {
    constexpr std::uint64_t answer = 110;
    const auto roundedUp = [](std::uint64_t time, std::uint64_t step) {
        return (time + step - 1) / step * step;
    };

    const std::uint64_t usbSeen = roundedUp(module.boot, 300) + 2000;
    const std::uint64_t greeted = usbSeen + 3 * 100;
    const std::uint64_t readySeen = module.boot + module.ready + answer;
    const std::uint64_t simSeen = (readySeen > greeted ? readySeen : greeted) + 500;
    // The network is looked for once a second, and the answer to one look is seen at the next.
    const std::uint64_t network = module.simStart + module.simInit + module.registration;
    const std::uint64_t searched = network > simSeen ? roundedUp(network - simSeen, 1000) : 0;
    const std::uint64_t found = simSeen + searched + 1000;
    constexpr std::uint64_t sequence = 200 + 500 + 5 * 200 + 500 + 1000 + 500 + 9 * 300 + 3 * 200 + 1000;
    const std::uint64_t identity = module.simReply + answer + module.reply + answer;
    constexpr std::uint64_t dialling = 200 + 1000 + 3000;
    return (found + sequence + identity + dialling + 200) * 101 / 100;
}

}  // namespace varkel::test
