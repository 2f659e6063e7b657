// A record of a message between two walls, which no decoder may touch.
#pragma once

#include <array>
#include <cstring>

#include "modem/sms_pdu.h"

namespace varkel::test {

struct Walled {
    using Wall = std::array<std::uint8_t, 64>;

    Walled() {
        before.fill(brick);
        std::memset(static_cast<void*>(&record), 'x', sizeof record);
        after.fill(brick);
    }
    // And each field ends within its bounds.
    bool Stands() const {
        Wall wall;
        wall.fill(brick);
        return before == wall && after == wall && record.SCA.Length() < 16 && record.TPA.Length() < 16 &&
               record.TP_SCTS.Length() < 16 && record.TP_UD.Length() < 161;
    }

    static constexpr std::uint8_t brick = 0xA5;
    Wall before;
    SmsPduRecord record;
    Wall after;
};

}  // namespace varkel::test
