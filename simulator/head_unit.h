// What the head unit's driver library answers, and what it was told.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/kovex_drv_api.h"

namespace varkel::sim {

// Plain state; the unit gives it meaning.
struct HeadUnit {
    int supplyValue = 25;
    int cardInserted = 1;  // the SD card
    int mainWindow = 0;    // 0: GetMainHandle fails
    int tmcPower = 0;
    int keySuspendLocks = 0;
    int autoSuspendLocks = 0;
    int audioTo3G = 0;
    int handsFree = 0;
    int speaker = 0;
    // Functions that fail, for whatever reason such libraries have.
    std::array<bool, drvTable.size()> failing{};

    bool& Failing(DrvFunction function) { return failing[static_cast<std::size_t>(function)]; }
    // Null when no function has that name; ASCII case is of no importance.
    static const DrvEntry* Find(std::string_view name);
};

}  // namespace varkel::sim
