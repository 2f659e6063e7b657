// Any text as a name in an alphabet that allows only a few characters.
#pragma once

#include <string>
#include <string_view>

namespace varkel {

// ASCII letters, digits, "-" and "_" stand for themselves, every other byte and `escape` itself is `escape`
// with two hexadecimal digits. Different texts give different names.
std::string EncodedName(std::string_view text, char escape);

}  // namespace varkel
