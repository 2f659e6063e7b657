// Makes the unit's sounds: those that a user can choose for a call and for a message.
//
//     make_sounds DIRECTORY
//
// The files must have the same bytes whatever machine builds them. So there are only the four basic
// operations on doubles, which IEEE 754 defines to the last bit; the sine is our own, and the build forbids
// fused operations.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr int rate = 22'050;
constexpr double peak = 0.7;  // of full scale, 3 dB below it

// The sine of a whole turn's part, 0 to 1: a Taylor series on a quarter of it, exact to 16-bit samples.
double SineOfTurn(double turn) {
    turn -= static_cast<double>(static_cast<std::int64_t>(turn));
    double sign = 1;
    if (turn >= 0.5) {
        turn -= 0.5;
        sign = -1;
    }
    if (turn > 0.25) turn = 0.5 - turn;
    constexpr double wholeTurn = 6.283185307179586;
    const double x = turn * wholeTurn;
    const double square = x * x;
    double sum = 0;
    for (const double factorial : {39'916'800.0, 362'880.0, 5040.0, 120.0, 6.0, 1.0})
        sum = 1 / factorial - sum * square;
    return sign * x * sum;
}

// One sine of a struck note: its frequency and loudness beside the note's, and the time in which it dies away
// to a third.
struct Partial {
    double ratio;
    double loudness;
    double decay;  // seconds
};

// A bar of wood: its second tone lies two octaves up and is soon gone.
constexpr Partial marimba[] = {{1, 1, 0.30}, {2, 0.10, 0.22}, {4, 0.16, 0.09}, {9.2, 0.03, 0.03}};
// A small bell, a little out of tune with itself, which makes it shimmer.
constexpr Partial chime[] = {
    {1, 1, 0.26}, {1.003, 0.35, 0.26}, {2, 0.22, 0.17}, {3.01, 0.10, 0.10}, {5.4, 0.03, 0.04}};

struct Note {
    double start;      // seconds
    double frequency;  // Hz
    double loudness;
};

constexpr double e5 = 659.255;
constexpr double gSharp5 = 830.609;
constexpr double b5 = 987.767;
constexpr double e6 = 1318.510;

// Two calls and a rest; the network rings again about when the file has ended.
constexpr double step = 0.14;
constexpr double second = 1.4;
constexpr Note ring[] = {
    {0 * step, e5, 0.8},          {1 * step, gSharp5, 0.8},
    {2 * step, b5, 0.9},          {3 * step, e6, 1.0},
    {4 * step, b5, 0.7},          {5 * step, e6, 0.9},
    {second + 0 * step, e5, 0.8}, {second + 1 * step, gSharp5, 0.8},
    {second + 2 * step, b5, 0.9}, {second + 3 * step, e6, 1.0},
    {second + 4 * step, b5, 0.7}, {second + 5 * step, e6, 0.9},
};
constexpr double ringLength = 4.0;

// Two bells that swing, three times and a rest.
constexpr double swing = 0.09;
constexpr Note bells[] = {
    {0 * swing, b5, 0.9},       {1 * swing, e6, 0.7},       {2 * swing, b5, 0.9},
    {3 * swing, e6, 0.7},       {4 * swing, b5, 0.9},       {5 * swing, e6, 0.7},
    {0.9 + 0 * swing, b5, 0.9}, {0.9 + 1 * swing, e6, 0.7}, {0.9 + 2 * swing, b5, 0.9},
    {0.9 + 3 * swing, e6, 0.7}, {0.9 + 4 * swing, b5, 0.9}, {0.9 + 5 * swing, e6, 0.7},
    {1.8 + 0 * swing, b5, 0.9}, {1.8 + 1 * swing, e6, 0.7}, {1.8 + 2 * swing, b5, 0.9},
    {1.8 + 3 * swing, e6, 0.7}, {1.8 + 4 * swing, b5, 0.9}, {1.8 + 5 * swing, e6, 0.7},
};

// Slow and low, for those who do not want to be startled.
constexpr Note calm[] = {
    {0.0, e5 / 2, 0.8}, {0.35, b5 / 2, 0.8}, {0.7, e5, 1.0}, {1.05, gSharp5, 0.8},
    {1.7, e5 / 2, 0.8}, {2.05, b5 / 2, 0.8}, {2.4, e5, 1.0}, {2.75, b5, 0.8},
};

constexpr Note message[] = {{0, b5, 0.8}, {0.13, e6, 1.0}};
constexpr double messageLength = 0.95;
constexpr Note drop[] = {{0, gSharp5, 0.9}, {0.12, e5, 1.0}};
constexpr Note knock[] = {{0, e5, 1.0}, {0.16, e5, 0.8}, {0.32, b5, 1.0}};

struct Sound {
    const char* name;
    double length;  // seconds
    std::span<const Note> notes;
    std::span<const Partial> partials;
};

// From 0 to 1 without a corner at either end.
double SoftStep(double x) {
    return x <= 0 ? 0 : x >= 1 ? 1 : x * x * (3 - 2 * x);
}

// exp(-1 / samples) to a precision that nobody hears: (1 - x / 1024) to the power of 1024.
double DecayFactor(double samples) {
    double factor = 1 - 1 / samples / 1024;
    for (int i = 0; i < 10; ++i)
        factor *= factor;
    return factor;
}

void Strike(std::vector<double>& samples, const Note& note, std::span<const Partial> partials) {
    constexpr double attack = 0.006;  // seconds
    const auto first = static_cast<std::size_t>(note.start * rate);
    for (const Partial& partial : partials) {
        const double turns = note.frequency * partial.ratio / rate;
        // What is too high for the rate would come back as another tone.
        if (turns > 0.45) continue;
        const double factor = DecayFactor(partial.decay * rate);
        double loudness = note.loudness * partial.loudness;
        for (std::size_t i = 0; first + i < samples.size(); ++i) {
            const auto time = static_cast<double>(i);
            samples[first + i] += SineOfTurn(time * turns) * loudness * SoftStep(time / (attack * rate));
            loudness *= factor;
        }
    }
}

std::vector<double> Play(double length, std::span<const Note> notes, std::span<const Partial> partials) {
    std::vector<double> samples(static_cast<std::size_t>(length * rate));
    for (const Note& note : notes)
        Strike(samples, note, partials);

    // The end is silence, so that a loop begins as the file does.
    constexpr double release = 0.25;  // seconds
    double loudest = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] *= SoftStep(static_cast<double>(samples.size() - 1 - i) / (release * rate));
        loudest = std::max(loudest, samples[i] < 0 ? -samples[i] : samples[i]);
    }
    for (double& sample : samples)
        sample *= peak / loudest;
    return samples;
}

std::string LittleEndian(std::uint32_t value, int octets) {
    std::string bytes;
    for (int i = 0; i < octets; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

// 16-bit PCM, one channel.
std::string Wav(const std::vector<double>& samples) {
    constexpr int octets = 2;
    constexpr int pcm = 1;
    constexpr double fullScale = 32'767;
    const auto size = static_cast<std::uint32_t>(samples.size() * octets);
    std::string file = "RIFF" + LittleEndian(36 + size, 4) + "WAVEfmt " + LittleEndian(16, 4) +
                       LittleEndian(pcm, 2) + LittleEndian(1, 2) + LittleEndian(rate, 4) +
                       LittleEndian(rate * octets, 4) + LittleEndian(octets, 2) +
                       LittleEndian(8 * octets, 2) + "data" + LittleEndian(size, 4);
    for (const double sample : samples) {
        const double scaled = sample * fullScale;
        const auto rounded = static_cast<std::int32_t>(scaled < 0 ? scaled - 0.5 : scaled + 0.5);
        file += LittleEndian(static_cast<std::uint32_t>(rounded), octets);
    }
    return file;
}

bool Write(const std::string& name, const std::string& bytes) {
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    if (!file) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_sounds DIRECTORY\n", stderr);
        return 2;
    }
    const std::string directory = argv[1];
    const Sound sounds[] = {
        {"ring", ringLength, ring, marimba},    {"ring2", ringLength, bells, chime},
        {"ring3", ringLength, calm, marimba},   {"msg", messageLength, message, chime},
        {"msg2", messageLength, drop, marimba}, {"msg3", messageLength, knock, marimba},
    };
    for (const Sound& sound : sounds) {
        const std::string name = directory + "/" + sound.name + ".wav";
        if (Write(name, Wav(Play(sound.length, sound.notes, sound.partials)))) continue;
        std::perror("make_sounds");
        return 1;
    }
    return 0;
}
