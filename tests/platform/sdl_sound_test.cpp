#include "platform/linux/sdl_sound.h"

#include <csignal>
#include <cstdint>
#include <thread>
#include <vector>

#include "platform/linux/wav_sound.h"
#include "tests/platform/dialog_fixture.h"
#include "tests/platform/pictures.h"
#include "tests/platform/problem_list.h"
#include "tests/platform/thread_watch.h"
#include "tests/support/memory_files.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

using test::LittleEndian;

struct WavFormat {
    std::uint32_t rate = 22'050;
    std::uint32_t channels = 1;
    std::uint32_t bits = 16;
};

std::string Wav(std::string_view samples, const WavFormat& format = {}) {
    const std::uint32_t frame = format.channels * format.bits / 8;
    const auto size = static_cast<std::uint32_t>(samples.size());
    return "RIFF" + LittleEndian(36 + size, 4) + "WAVEfmt " + LittleEndian(16, 4) + LittleEndian(1, 2) +
           LittleEndian(format.channels, 2) + LittleEndian(format.rate, 4) +
           LittleEndian(format.rate * frame, 4) + LittleEndian(frame, 2) + LittleEndian(format.bits, 2) +
           "data" + LittleEndian(size, 4) + std::string(samples);
}

std::string Samples(std::uint16_t value, std::size_t count) {
    std::string samples;
    for (std::size_t i = 0; i < count; ++i)
        samples += LittleEndian(value, 2);
    return samples;
}

// The sound server is a file; the device is SDL's "disk" with a millisecond for each buffer of 46.
class SdlSoundTest : public test::DialogFixture {
  protected:
    SdlSoundTest() {
        UseDriver("disk");
        setenv("SDL_DISKAUDIOFILE", output.c_str(), 1);
        setenv("SDL_DISKAUDIODELAY", "1", 1);
        files.WriteWhole("short", Wav(Samples(0x1111, 2205)));
        files.WriteWhole("long", Wav(Samples(0x2222, 6615)));
    }
    ~SdlSoundTest() override { unsetenv("SDL_AUDIODRIVER"); }

    static void UseDriver(const char* name) { setenv("SDL_AUDIODRIVER", name, 1); }

    // Only the sound thread is there, and it waits.
    bool Quiet() {
        return ServeUntil([this] { return test::ThreadCount() == threads; });
    }
    std::size_t Heard(char byte) const {
        const std::string content = test::FileContent(output);
        return static_cast<std::size_t>(std::count(content.begin(), content.end(), byte)) / 2;
    }

    test::ScratchDirectory scratch;
    const std::string output = scratch / "heard";
    test::MemoryFiles files;
    test::ProblemList problems;
    SdlSound sound{runtime, files, problems.Sink()};
    const std::ptrdiff_t threads = test::ThreadCount();
};

TEST_F(SdlSoundTest, PlaysAFileOnceAndSleepsAgain) {
    struct sigaction before {};
    sigaction(SIGINT, nullptr, &before);
    EXPECT_TRUE(sound.PlaySound("short", SoundMode::Once));
    EXPECT_TRUE(ServeUntil([&] { return Heard(0x11) == 2205; }));
    EXPECT_TRUE(Quiet());
    const std::string content = test::FileContent(output);
    EXPECT_TRUE(content.find(Samples(0x1111, 2205)) != std::string::npos) << "in one piece";
    EXPECT_EQ(Heard(0x11), 2205u) << "once";
    struct sigaction after {};
    sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);

    EXPECT_TRUE(ServeUntil([&] {
        const long waits = test::WakeUpsOf("sound");
        runtime.Sleep(300);
        return waits > 0 && test::WakeUpsOf("sound") == waits;
    })) << "no wake-up any more";
    EXPECT_EQ(problems.All(), std::vector<std::string>());
}

TEST_F(SdlSoundTest, RepeatsUntilAnotherSoundOrSilenceTakesItsPlace) {
    EXPECT_TRUE(sound.PlaySound("short", SoundMode::Loop));
    EXPECT_TRUE(ServeUntil([&] { return Heard(0x11) > 30'000; })) << "lap after lap";
    EXPECT_TRUE(sound.PlaySound("long", SoundMode::Once));
    EXPECT_TRUE(ServeUntil([&] { return Heard(0x22) == 6615; }));
    EXPECT_TRUE(Quiet());
    const std::string content = test::FileContent(output);
    EXPECT_EQ(content.find('\x11', content.find('\x22')), std::string::npos) << "the first has ended";
    EXPECT_TRUE(sound.PlaySound("long", SoundMode::Loop));
    EXPECT_TRUE(ServeUntil([&] { return Heard(0x22) > 6615; }));
    EXPECT_TRUE(sound.PlaySound("", SoundMode::Once));
    EXPECT_TRUE(Quiet()) << "an empty path ends it";
    EXPECT_TRUE(sound.PlaySound("", SoundMode::Loop)) << "nothing plays, and that is well";
}

TEST_F(SdlSoundTest, OpensTheDeviceAnewForAnotherKindOfSamples) {
    files.WriteWhole("stereo", Wav(Samples(0x3333, 8000), {.rate = 8000, .channels = 2}));
    files.WriteWhole("bytes", Wav(std::string(4000, '\x44'), {.rate = 8000, .bits = 8}));
    for (const char* const name : {"short", "stereo", "bytes"}) {
        EXPECT_TRUE(sound.PlaySound(name, SoundMode::Once));
        EXPECT_TRUE(ServeUntil([&] { return test::ThreadCount() > threads; })) << name;
    }
    EXPECT_TRUE(ServeUntil([&] { return Heard(0x44) == 2000; }));
    EXPECT_TRUE(Quiet());
}

TEST_F(SdlSoundTest, IsSilentForFilesThatAreNoSound) {
    const std::string good = Wav(Samples(0x1111, 100));
    std::string noData = good;
    noData.replace(noData.find("data"), 4, "dada");
    const std::pair<const char*, std::string> bad[] = {
        {"a text", "a text, no sound at all, and as long as a header of a sound would be"},
        {"no samples", Wav("")},
        {"no data", noData},
        {"no rate", Wav(Samples(1, 100), {.rate = 0})},
        {"an endless rate", Wav(Samples(1, 100), {.rate = 0xFFFFFFFF})},
        {"no channels", Wav(Samples(1, 100), {.channels = 0})},
        {"many channels", Wav(Samples(1, 102), {.channels = 3})},
        {"odd bits", Wav(Samples(1, 100), {.bits = 13})},
        {"31 seconds", Wav(std::string(31 * 8000, 'x'), {.rate = 8000, .bits = 8})},
        {"more than 8 MiB", Wav(std::string(WavSound::largestFile, 'x'), {.rate = 192'000, .channels = 2})},
    };
    EXPECT_TRUE(sound.PlaySound("long", SoundMode::Loop));
    EXPECT_FALSE(sound.PlaySound("missing", SoundMode::Once));
    EXPECT_TRUE(Quiet()) << "silence is silence";
    for (const auto& [name, file] : bad) {
        files.WriteWhole("bad", file);
        EXPECT_FALSE(sound.PlaySound("bad", SoundMode::Once)) << name;
    }
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_FALSE(ReadWav(good.substr(0, length))) << length;
    for (std::size_t at = 0; at < 44; ++at) {
        for (int value = 0; value < 256; ++value) {
            std::string damaged = good;
            damaged[at] = static_cast<char>(value);
            if (const auto read = ReadWav(damaged)) {
                EXPECT_LE(read->samples.size(), WavSound::longestSeconds * read->BytesPerSecond());
            }
        }
    }
    EXPECT_TRUE(ReadWav(Wav(std::string(30 * 8000, 'x'), {.rate = 8000, .bits = 8}))) << "30 seconds";
    EXPECT_TRUE(Quiet());
    EXPECT_EQ(problems.All(), std::vector<std::string>());
}

TEST_F(SdlSoundTest, SaysOnceThatThereIsNoDeviceAndTriesAgain) {
    UseDriver("no such driver");
    EXPECT_TRUE(sound.PlaySound("short", SoundMode::Once));
    EXPECT_TRUE(ServeUntil([&] { return !problems.All().empty(); }));
    EXPECT_EQ(problems.All().front().substr(0, 10), "no sound: ");
    EXPECT_TRUE(sound.PlaySound("short", SoundMode::Loop));
    runtime.Sleep(100);
    EXPECT_EQ(problems.All().size(), 1u);
    EXPECT_TRUE(Quiet());
    UseDriver("disk");
    EXPECT_TRUE(sound.PlaySound("short", SoundMode::Once));
    EXPECT_TRUE(ServeUntil([&] { return Heard(0x11) == 2205; }));
    EXPECT_TRUE(Quiet());
}

TEST_F(SdlSoundTest, TakesOrdersFromAnyThread) {
    UseDriver("dummy");
    std::vector<std::jthread> callers;
    for (int caller = 0; caller < 4; ++caller) {
        callers.emplace_back([this, caller] {
            constexpr const char* names[] = {"short", "long", "", "missing"};
            for (int i = 0; i < 50; ++i) {
                (void)sound.PlaySound(names[(caller + i) % 4], i % 2 ? SoundMode::Loop : SoundMode::Once);
                runtime.Sleep(1);
            }
        });
    }
    callers.clear();
    EXPECT_TRUE(sound.PlaySound("long", SoundMode::Loop)) << "and the end comes while it plays";
}

}  // namespace
}  // namespace varkel
