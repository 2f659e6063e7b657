#include "modem/ucs2.h"

#include <algorithm>
#include <array>

namespace varkel {

namespace {

constexpr char16_t paragraphSeparator = 0x2029;

}  // namespace

std::size_t EncodeUcs2(const CodePage& page, std::string_view narrow, std::span<std::uint8_t> octets) {
    std::array<char16_t, mostUcs2Units> wide;
    const std::size_t units =
        page.MultiByteToWideChar(narrow, std::span(wide).first(std::min(mostUcs2Units, octets.size() / 2)));
    for (std::size_t i = 0; i < units; ++i) {
        octets[2 * i] = static_cast<std::uint8_t>(wide[i] >> 8);
        octets[2 * i + 1] = static_cast<std::uint8_t>(wide[i]);
    }
    return 2 * units;
}

std::size_t DecodeUcs2(const CodePage& page, std::span<const std::uint8_t> octets, std::span<char> narrow) {
    std::array<char16_t, mostUcs2Units> wide;
    const std::size_t units = std::min(octets.size() / 2, mostUcs2Units);
    for (std::size_t i = 0; i < units; ++i) {
        const auto unit = static_cast<char16_t>(octets[2 * i] << 8 | octets[2 * i + 1]);
        wide[i] = unit == paragraphSeparator ? u' ' : unit;
    }
    if (!narrow.empty()) {
        const std::size_t bytes =
            page.WideCharToMultiByte({wide.data(), units}, narrow.first(narrow.size() - 1));
        narrow[bytes] = '\0';
    }
    return units;
}

}  // namespace varkel
