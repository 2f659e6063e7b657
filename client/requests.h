// What the program answers through the shared block, and what it is merely told.
#pragma once

#include "client/phone_program.h"

namespace varkel::client {

// Each prints its answer: the IMSI, the IMEI, "up" or "down".
ExitCode AskImsi(PhoneProgram& program, Ticks timeout);
ExitCode AskImei(PhoneProgram& program, Ticks timeout);
ExitCode AskStatus(PhoneProgram& program, Ticks timeout);

// Posts a registered message.
ExitCode Tell(PhoneProgram& program, std::string_view message, std::uint32_t wParam = 0);
// Asks the program to end and waits until it has.
ExitCode Quit(PhoneProgram& program, Ticks timeout);

}  // namespace varkel::client
