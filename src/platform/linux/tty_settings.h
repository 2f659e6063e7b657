// A serial device's control block in the terms of a tty.
#pragma once

#include <termios.h>

#include "platform/serial_port.h"

namespace varkel {

// What the tty is set to, as far as a control block can say it.
Dcb DcbFromTermios(const termios& settings);

// Brings speed, frame and flow control of `settings` to what `state` asks; false when a tty cannot do that.
bool ApplyDcb(const Dcb& state, termios& settings);

// No echo, no signals, no translation; reads return what is there.
void MakeRaw(termios& settings);

// Whether a tty took the speed and the frame that it was asked for: tcsetattr succeeds when it took anything.
bool SameLine(const termios& asked, const termios& taken);

}  // namespace varkel
