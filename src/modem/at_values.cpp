#include "modem/at_values.h"

#include "platform/text.h"

namespace varkel {

ValueFault Ucs2HexName(std::string_view utf8, SimName& name) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (const char16_t unit : Utf16FromUtf8(utf8)) {
        for (const int shift : {12, 8, 4, 0})
            hex.push_back(digits[(unit >> shift) & 0xF]);
    }
    return SimName::Parse(hex, name);
}

}  // namespace varkel
