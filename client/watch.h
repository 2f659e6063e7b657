// Prints what the program tells the unit: changes of the data link, calls and messages.
#pragma once

#include <functional>

#include "client/phone_program.h"
#include "platform/message_loop.h"

namespace varkel::client {

// Registers as a listener and prints a line for each notification and broadcast, until the loop quits. Then
// it is removed from the listeners.
ExitCode Watch(PhoneProgram& program, MessageLoop& loop);

}  // namespace varkel::client
