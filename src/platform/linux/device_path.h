// Device paths: "NandFlash\System\Phone" or "\ResidentFlash2\bin\msg.wav".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace varkel {

// The names between the backslashes; a backslash too many means nothing. Empty when a name could lead out of
// the unit ("..", ".", one with a slash or a NUL), when there is none, or when there are more than 32.
std::vector<std::string> SplitDevicePath(std::string_view path);

// The path in one spelling, to compare it: lower case, one backslash between the names and none outside; ""
// for one that SplitDevicePath refuses.
std::string PlainDevicePath(std::string_view path);

}  // namespace varkel
