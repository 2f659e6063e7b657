// What will happen without anybody's doing: the simulated unit's only notion of passing time.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "simulator/millis.h"

namespace varkel::sim {

// Who planned something, so that it can be called off.
enum class Topic { Start, Sim, Radio, Reply, Ussd, Call, CallBack, Data, Messages };

class Agenda {
  public:
    // Receives the time that it was planned for.
    using Work = std::function<void(Millis)>;

    // Work of the same time runs in the order in which it was planned.
    void At(Millis when, Topic topic, Work work);
    void Drop(Topic topic);

    std::optional<Millis> Next() const;
    // Carries out what is due, including what comes up meanwhile.
    void Advance(Millis now);

    // Topics plan a handful of things each; more is a mistake in the simulator.
    static constexpr std::size_t limit = 256;

  private:
    struct Entry {
        Topic topic;
        Work work;
    };

    std::map<std::pair<Millis, std::uint64_t>, Entry> m_entries;
    std::uint64_t m_lastNumber = 0;
};

}  // namespace varkel::sim
