// The line from the modem to the program, and what can go wrong on it.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/millis.h"
#include "simulator/random.h"

namespace varkel::sim {

struct Faults {
    std::size_t split = 0;  // bytes that arrive in one piece; 0 = whatever was sent in one go
    double noise = 0;       // probability that a byte arrives as another one
    double lose = 0;        // probability that an answer or report does not arrive
    double repeat = 0;      // probability that an answer or report arrives twice
    Millis late = 0;        // everything arrives this much later
};

// What the modem sends in one go. An echo is never lost or repeated by `lose` and `repeat`.
enum class Burst { Echo, Answer };

class Wire {
  public:
    explicit Wire(std::uint64_t seed) : m_random(seed) {}

    void Send(std::string_view bytes, Burst kind, Millis now);
    // The next piece that has arrived by now; empty when there is none. Call again for further pieces.
    std::string Take(Millis now);
    // When the next piece arrives.
    std::optional<Millis> Next() const;
    void Clear();

    Faults& Settings() { return m_faults; }
    const Faults& Settings() const { return m_faults; }

    static constexpr std::size_t limit = 256 * 1024;  // bytes on their way; what does not fit is lost

  private:
    struct Flight {
        Millis arrival;
        std::string bytes;
    };

    void Put(std::string_view bytes, Millis arrival);

    Faults m_faults;
    Random m_random;
    std::deque<Flight> m_flights;
    std::size_t m_waiting = 0;  // bytes in m_flights
};

}  // namespace varkel::sim
