// A sound as samples.
#pragma once

#include <SDL_audio.h>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace varkel {

struct WavSound {
    int rate = 0;  // samples a second
    int channels = 0;
    SDL_AudioFormat format = 0;
    std::string bytes;

    std::size_t BytesPerSecond() const;
    bool SameFormat(const WavSound& other) const {
        return rate == other.rate && channels == other.channels && format == other.format;
    }

    static constexpr std::size_t largestFile = 8 * 1024 * 1024;
    static constexpr std::size_t longestSeconds = 30;
};

// Nothing when the file is damaged, empty, too long, or neither mono nor stereo. Any thread.
std::optional<WavSound> ReadWav(std::string_view file);

}  // namespace varkel
