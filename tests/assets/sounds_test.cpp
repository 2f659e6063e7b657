#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <numeric>
#include <span>
#include <vector>

#include "platform/linux/linux_unit_files.h"
#include "platform/linux/wav_sound.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

std::vector<std::int16_t> SamplesOf(const WavSound& sound) {
    std::vector<std::int16_t> samples;
    for (std::size_t i = 0; i + 1 < sound.samples.size(); i += 2) {
        const auto low = static_cast<std::uint8_t>(sound.samples[i]);
        const auto high = static_cast<std::uint8_t>(sound.samples[i + 1]);
        samples.push_back(static_cast<std::int16_t>(high << 8 | low));
    }
    return samples;
}

int Loudest(std::span<const std::int16_t> samples) {
    int loudest = 0;
    for (const std::int16_t sample : samples)
        loudest = std::max(loudest, std::abs(int{sample}));
    return loudest;
}

TEST(Sounds, AreHeardAndDoNotClick) {
    struct Case {
        const char* path;
        double shortest;  // seconds
        double longest;
    };
    const Case cases[] = {
        {"\\ResidentFlash2\\bin\\ring.wav", 3, 5},   {"\\ResidentFlash2\\bin\\ring2.wav", 3, 5},
        {"\\ResidentFlash2\\bin\\ring3.wav", 3, 5},  {"\\ResidentFlash2\\bin\\msg.wav", 0.3, 1},
        {"\\ResidentFlash2\\bin\\msg2.wav", 0.3, 1}, {"\\ResidentFlash2\\bin\\msg3.wav", 0.3, 1},
    };
    test::ScratchDirectory scratch;
    LinuxUnitFiles files(scratch / "flash", VARKEL_ASSETS);
    for (const auto& [path, shortest, longest] : cases) {
        SCOPED_TRACE(path);
        const auto file = files.ReadWhole(path, WavSound::largestFile);
        ASSERT_TRUE(file);
        const auto sound = ReadWav(*file);
        ASSERT_TRUE(sound);
        EXPECT_EQ(sound->bits, 16);
        EXPECT_EQ(sound->channels, 1);
        EXPECT_EQ(sound->rate, 22'050);
        const std::vector<std::int16_t> samples = SamplesOf(*sound);
        const auto count = static_cast<double>(samples.size());
        EXPECT_GE(count / sound->rate, shortest);
        EXPECT_LE(count / sound->rate, longest);

        constexpr int threeDecibelsBelow = 23'198;
        const int loudest = Loudest(samples);
        EXPECT_LE(loudest, threeDecibelsBelow);
        EXPECT_GT(loudest, threeDecibelsBelow * 9 / 10);
        EXPECT_LT(std::abs(std::accumulate(samples.begin(), samples.end(), 0.0) / count), 3)
            << "no direct current";
        // Begins and ends in silence, 1 ms and 5 ms of it, so that the seam of a loop is not heard.
        EXPECT_LT(Loudest(std::span(samples).first(22)), loudest / 10);
        EXPECT_LE(Loudest(std::span(samples).last(110)), 3);
        EXPECT_EQ(samples.back(), 0);
        EXPECT_LE(std::abs(int{samples.front()}), 1);
        // A click is a step: the highest tone of that loudness makes none of half the scale.
        for (std::size_t i = 1; i < samples.size(); ++i)
            ASSERT_LT(std::abs(samples[i] - samples[i - 1]), 16'384) << i;
    }
}

}  // namespace
}  // namespace varkel
