// How many seeds a proof runs.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace varkel::test {

// VARKEL_SEEDS in the environment, for longer or shorter runs, or the usual number.
inline std::uint64_t SeedCount(std::uint64_t usual) {
    const char* const wanted = std::getenv("VARKEL_SEEDS");
    return wanted ? std::strtoull(wanted, nullptr, 10) : usual;
}

}  // namespace varkel::test
