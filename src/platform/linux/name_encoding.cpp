#include "platform/linux/name_encoding.h"

namespace varkel {

std::string EncodedName(std::string_view text, char escape) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string name;
    for (const char c : text) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool digit = c >= '0' && c <= '9';
        if ((letter || digit || c == '-' || c == '_') && c != escape) {
            name += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            name += {escape, digits[byte >> 4], digits[byte & 0xF]};
        }
    }
    return name;
}

}  // namespace varkel
