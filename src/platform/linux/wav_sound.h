// A sound as samples.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace varkel {

struct WavSound {
    int rate = 0;  // samples a second
    int channels = 0;
    int bits = 0;         // of a sample: 8 without a sign, 16 with one
    std::string samples;  // little-endian, the channels in turn

    std::size_t FrameBytes() const { return static_cast<std::size_t>(channels * bits / 8); }
    std::size_t BytesPerSecond() const { return static_cast<std::size_t>(rate) * FrameBytes(); }
    bool SameFormat(const WavSound& other) const {
        return rate == other.rate && channels == other.channels && bits == other.bits;
    }

    static constexpr std::size_t largestFile = 8 * 1024 * 1024;
    static constexpr std::size_t longestSeconds = 30;
};

// Nothing unless the file is whole, PCM of 8 or 16 bits, mono or stereo, 4 to 192 kHz, and not too long.
std::optional<WavSound> ReadWav(std::string_view file);

}  // namespace varkel
