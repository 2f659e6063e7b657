#include "modem/septets.h"

namespace varkel {

std::size_t Pack7Bit(std::string_view text, std::span<std::uint8_t> octets) {
    std::size_t written = 0;
    unsigned remembered = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned character = static_cast<unsigned char>(text[i]);
        const unsigned shift = i % 8;
        if (shift != 0) {
            if (written == octets.size()) break;
            octets[written++] = static_cast<std::uint8_t>(remembered | character << (8 - shift));
        }
        remembered = character >> shift;
    }
    return written;
}

std::size_t Unpack7Bit(std::span<const std::uint8_t> octets, std::span<char> text) {
    if (text.empty()) return 0;
    const std::size_t room = text.size() - 1;
    std::size_t written = 0;
    const auto put = [&](unsigned character) {
        if (written < room) text[written++] = static_cast<char>(character);
    };
    unsigned carry = 0;
    unsigned shift = 0;
    for (const unsigned octet : octets) {
        put((octet << shift | carry) & 0x7F);
        carry = octet >> (7 - shift);
        if (++shift == 7) {
            put(carry);
            carry = 0;
            shift = 0;
        }
    }
    text[written] = '\0';
    return written;
}

}  // namespace varkel
