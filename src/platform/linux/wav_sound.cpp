#include "platform/linux/wav_sound.h"

#include <algorithm>
#include <cstdint>

namespace varkel {

namespace {

// Takes a little-endian number off the front, which has as many octets.
std::uint32_t TakeNumber(std::string_view& bytes, std::size_t octets) {
    std::uint32_t number = 0;
    for (std::size_t i = octets; i > 0; --i)
        number = number << 8 | static_cast<std::uint8_t>(bytes[i - 1]);
    bytes.remove_prefix(octets);
    return number;
}

struct Chunk {
    std::string_view name;
    std::string_view content;
};

// Nothing when it reaches past the end.
std::optional<Chunk> TakeChunk(std::string_view& bytes) {
    constexpr std::size_t head = 8;
    if (bytes.size() < head) return std::nullopt;
    Chunk chunk{bytes.substr(0, 4), {}};
    bytes.remove_prefix(chunk.name.size());
    const std::size_t size = TakeNumber(bytes, 4);
    if (size > bytes.size()) return std::nullopt;
    chunk.content = bytes.substr(0, size);
    // A chunk of odd size is followed by an octet of nothing.
    bytes.remove_prefix(std::min(size + size % 2, bytes.size()));
    return chunk;
}

bool TakeFormat(std::string_view content, WavSound& sound) {
    constexpr std::size_t shortest = 16;
    if (content.size() < shortest) return false;
    const auto coding = TakeNumber(content, 2);
    const auto channels = TakeNumber(content, 2);
    const auto rate = TakeNumber(content, 4);
    TakeNumber(content, 4);  // bytes a second
    const auto frame = TakeNumber(content, 2);
    const auto bits = TakeNumber(content, 2);
    constexpr std::uint32_t pcm = 1;
    if (coding != pcm || channels < 1 || channels > 2 || (bits != 8 && bits != 16)) return false;
    if (rate < 4000 || rate > 192'000 || frame != channels * bits / 8) return false;
    sound = {static_cast<int>(rate), static_cast<int>(channels), static_cast<int>(bits), {}};
    return true;
}

}  // namespace

std::optional<WavSound> ReadWav(std::string_view file) {
    if (file.size() > WavSound::largestFile) return std::nullopt;
    const auto whole = TakeChunk(file);
    if (!whole || whole->name != "RIFF" || !whole->content.starts_with("WAVE")) return std::nullopt;
    std::string_view rest = whole->content.substr(4);
    WavSound sound;
    while (const auto chunk = TakeChunk(rest)) {
        if (chunk->name == "fmt " && !TakeFormat(chunk->content, sound)) return std::nullopt;
        if (chunk->name != "data") continue;
        const std::size_t size = chunk->content.size();
        const bool known = sound.rate != 0;
        if (!known || size == 0 || size % sound.FrameBytes() != 0) return std::nullopt;
        if (size > WavSound::longestSeconds * sound.BytesPerSecond()) return std::nullopt;
        sound.samples = chunk->content;
        return sound;
    }
    return std::nullopt;
}

}  // namespace varkel
