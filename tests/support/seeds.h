// The seeds that a proof runs.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>

namespace varkel::test {

// A number from the environment, for longer runs.
inline std::uint64_t NumberFrom(const char* variable, std::uint64_t otherwise) {
    const char* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

// Calls live(seed) for 1 to `usual`, or to VARKEL_SEEDS where that is set, until the first failure. Where
// VARKEL_SEED is set, for that one alone. Returns how many there were.
template <class Live>
std::uint64_t ForEachSeed(std::uint64_t usual, const Live& live) {
    const std::uint64_t first = NumberFrom("VARKEL_SEED", 1);
    const std::uint64_t last = std::getenv("VARKEL_SEED") ? first : NumberFrom("VARKEL_SEEDS", usual);
    std::uint64_t count = 0;
    for (std::uint64_t seed = first; seed <= last && !testing::Test::HasFailure(); ++seed, ++count)
        live(seed);
    return count;
}

}  // namespace varkel::test
