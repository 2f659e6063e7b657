#include "platform/linux/wav_sound.h"

#include <memory>

namespace varkel {

std::size_t WavSound::BytesPerSecond() const {
    constexpr std::size_t bitsOfByte = 8;
    return static_cast<std::size_t>(rate) * static_cast<std::size_t>(channels) * SDL_AUDIO_BITSIZE(format) /
           bitsOfByte;
}

std::optional<WavSound> ReadWav(std::string_view file) {
    if (file.empty() || file.size() > WavSound::largestFile) return std::nullopt;
    SDL_AudioSpec spec{};
    Uint8* samples = nullptr;
    Uint32 length = 0;
    SDL_RWops* const source = SDL_RWFromConstMem(file.data(), static_cast<int>(file.size()));
    if (!source || !SDL_LoadWAV_RW(source, 1, &spec, &samples, &length)) return std::nullopt;
    const std::unique_ptr<Uint8, void (*)(Uint8*)> owner(samples, SDL_FreeWAV);

    constexpr int lowestRate = 4000;
    constexpr int highestRate = 192'000;
    const bool known =
        spec.freq >= lowestRate && spec.freq <= highestRate && spec.channels >= 1 && spec.channels <= 2;
    WavSound sound{spec.freq, spec.channels, spec.format, {}};
    if (!known || length == 0 || length > WavSound::longestSeconds * sound.BytesPerSecond())
        return std::nullopt;
    sound.bytes.assign(samples, samples + length);
    return sound;
}

}  // namespace varkel
