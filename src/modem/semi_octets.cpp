#include "modem/semi_octets.h"

#include <algorithm>

namespace varkel {

namespace {

constexpr char filler = 'F';

}  // namespace

std::size_t SwapDigits(std::string_view digits, std::span<char> swapped) {
    const std::size_t count = std::min(digits.size() + digits.size() % 2, swapped.size() / 2 * 2);
    for (std::size_t i = 0; i < count; i += 2) {
        swapped[i] = i + 1 < digits.size() ? digits[i + 1] : filler;
        swapped[i + 1] = digits[i];
    }
    return count;
}

std::size_t UnswapDigits(std::string_view swapped, std::span<char> digits) {
    std::size_t count = swapped.size();
    // The partner of each digit; one without a partner stays where it is.
    const auto digitAt = [swapped](std::size_t i) {
        const std::size_t partner = i ^ 1;
        return swapped[partner < swapped.size() ? partner : i];
    };
    if (count > 0 && digitAt(count - 1) == filler) --count;
    count = std::min(count, digits.size());
    for (std::size_t i = 0; i < count; ++i)
        digits[i] = digitAt(i);
    return count;
}

}  // namespace varkel
