#include "modem/hex_text.h"

#include <algorithm>

namespace varkel {

std::size_t BytesToHex(std::span<const std::uint8_t> bytes, std::span<char> hex) {
    static constexpr char digits[] = "0123456789ABCDEF";
    if (hex.empty()) return 0;
    const std::size_t count = std::min(bytes.size(), (hex.size() - 1) / 2);
    for (std::size_t i = 0; i < count; ++i) {
        hex[2 * i] = digits[bytes[i] >> 4];
        hex[2 * i + 1] = digits[bytes[i] & 0xF];
    }
    hex[2 * count] = '\0';
    return 2 * count;
}

std::size_t HexToBytes(std::string_view hex, std::span<std::uint8_t> bytes) {
    const std::size_t count = std::min(hex.size() / 2, bytes.size());
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = HexOctet(hex[2 * i], hex[2 * i + 1]);
    return count;
}

}  // namespace varkel
