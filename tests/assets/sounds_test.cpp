#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#include "platform/linux/linux_unit_files.h"
#include "platform/linux/wav_sound.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

struct Expected {
    const char* path;
    double shortest;  // seconds
    double longest;
};

class SoundFile : public testing::TestWithParam<Expected> {
  protected:
    void SetUp() override {
        LinuxUnitFiles files(scratch / "flash", VARKEL_ASSETS);
        const auto file = files.ReadWhole(GetParam().path, WavSound::largestFile);
        ASSERT_TRUE(file);
        const auto read = ReadWav(*file);
        ASSERT_TRUE(read);
        sound = *read;
        for (std::size_t i = 0; i + 1 < sound.samples.size(); i += 2) {
            const auto low = static_cast<std::uint8_t>(sound.samples[i]);
            const auto high = static_cast<std::uint8_t>(sound.samples[i + 1]);
            samples.push_back(static_cast<std::int16_t>(high << 8 | low));
        }
    }

    int Loudest(std::size_t begin, std::size_t end) const {
        int loudest = 0;
        for (std::size_t i = begin; i < end; ++i)
            loudest = std::max(loudest, std::abs(int{samples[i]}));
        return loudest;
    }

    test::ScratchDirectory scratch;
    WavSound sound;
    std::vector<std::int16_t> samples;
};

TEST_P(SoundFile, IsHeardAndDoesNotClick) {
    EXPECT_EQ(sound.bits, 16);
    EXPECT_EQ(sound.channels, 1);
    EXPECT_EQ(sound.rate, 22'050);
    const double seconds = static_cast<double>(samples.size()) / sound.rate;
    EXPECT_GE(seconds, GetParam().shortest);
    EXPECT_LE(seconds, GetParam().longest);

    constexpr int threeDecibelsBelow = 23'198;
    const int loudest = Loudest(0, samples.size());
    EXPECT_LE(loudest, threeDecibelsBelow);
    EXPECT_GT(loudest, threeDecibelsBelow * 9 / 10);
    double sum = 0;
    for (const std::int16_t sample : samples)
        sum += sample;
    EXPECT_LT(std::abs(sum / static_cast<double>(samples.size())), 3) << "no direct current";

    // Begins and ends in silence, 1 ms and 5 ms of it, so that the seam of a loop is not heard.
    EXPECT_LT(Loudest(0, 22), loudest / 10);
    EXPECT_LE(Loudest(samples.size() - 110, samples.size()), 3);
    EXPECT_EQ(samples.back(), 0);
    EXPECT_LE(std::abs(int{samples.front()}), 1);
    // A click is a step: the highest tone of that loudness makes none of half the scale.
    for (std::size_t i = 1; i < samples.size(); ++i)
        ASSERT_LT(std::abs(samples[i] - samples[i - 1]), 16'384) << i;
}

INSTANTIATE_TEST_SUITE_P(Sounds, SoundFile,
                         testing::Values(Expected{"\\ResidentFlash2\\bin\\ring.wav", 3, 5},
                                         Expected{"\\ResidentFlash2\\bin\\ring2.wav", 3, 5},
                                         Expected{"\\ResidentFlash2\\bin\\ring3.wav", 3, 5},
                                         Expected{"\\ResidentFlash2\\bin\\msg.wav", 0.3, 1},
                                         Expected{"\\ResidentFlash2\\bin\\msg2.wav", 0.3, 1},
                                         Expected{"\\ResidentFlash2\\bin\\msg3.wav", 0.3, 1}));

}  // namespace
}  // namespace varkel
