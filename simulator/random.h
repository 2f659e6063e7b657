// Chance that repeats: the same seed gives the same numbers on every machine.
#pragma once

#include <cstdint>

namespace varkel::sim {

// SplitMix64. The standard library's distributions differ between libraries, so there are none here.
class Random {
  public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t Next() {
        m_state += 0x9E3779B97F4A7C15u;
        std::uint64_t x = m_state;
        x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
        x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
        return x ^ (x >> 31);
    }

    // From 0 up to, but not including, `limit`, which is not 0.
    std::uint64_t Below(std::uint64_t limit) { return Next() % limit; }

    bool Chance(double probability) { return static_cast<double>(Next() >> 11) * 0x1p-53 < probability; }

  private:
    std::uint64_t m_state;
};

}  // namespace varkel::sim
