// The seeds that a proof runs.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>

namespace varkel::test {

// Calls live(seed) for 1 to `usual`, or to VARKEL_SEEDS where that is set, until the first failure. Where
// VARKEL_SEED is set, for that one alone. Returns how many there were.
template <class Live>
std::uint64_t ForEachSeed(std::uint64_t usual, const Live& live) {
    const auto number = [](const char* name, std::uint64_t otherwise) {
        const char* const text = std::getenv(name);
        return text ? std::strtoull(text, nullptr, 10) : otherwise;
    };
    const std::uint64_t first = number("VARKEL_SEED", 1);
    const std::uint64_t last = std::getenv("VARKEL_SEED") ? first : number("VARKEL_SEEDS", usual);
    std::uint64_t count = 0;
    for (std::uint64_t seed = first; seed <= last && !testing::Test::HasFailure(); ++seed, ++count)
        live(seed);
    return count;
}

}  // namespace varkel::test
