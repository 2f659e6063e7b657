// The commands that prepare a registered module for work, as a table.
#pragma once

#include <span>

#include "modem/at_channel.h"
#include "platform/runtime.h"

namespace varkel {

struct InitStep {
    void (*send)(CATChannel& at);
    Ticks pause;  // after the command
};

// Up to the point where the call lists are loaded.
std::span<const InitStep> InitStepsBeforeRecords();
// From there to the SIM's phonebook.
std::span<const InitStep> InitStepsBeforePhonebook();

}  // namespace varkel
