// What a test of the data link finds, in the numbers that the unit's other programs know.
#pragma once

#include <cstdint>

namespace varkel {

enum class LinkStatus : std::uint32_t { Works = 1, DoesNotWork = 2 };

enum class LinkReason : std::uint32_t {
    None = 0,         // the link works, or nothing was found
    CallOrPower = 2,  // a call has the modem, or the modem is silent and the supply too low or unknown
    Sim = 11,
    PoorSignal = 12,
    NoAnswer = 16,  // the modem is silent although it has power
};

struct LinkResult {
    LinkStatus status = LinkStatus::DoesNotWork;
    LinkReason reason = LinkReason::None;

    bool operator==(const LinkResult&) const = default;
};

}  // namespace varkel
