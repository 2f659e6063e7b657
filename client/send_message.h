// Sends a short message through the program.
#pragma once

#include <string>

#include "client/phone_program.h"

namespace varkel::client {

// Prints "sent" when the network has taken it. A message that failed has no event of its own: it ends, like
// one whose result is late, as NoAnswer.
ExitCode SendShortMessage(PhoneProgram& program, const UnitSettings& settings, const std::string& number,
                          const std::string& text, Ticks timeout);

}  // namespace varkel::client
