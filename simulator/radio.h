// The modem's view of the mobile network: registration and signal.
#pragma once

#include <functional>

#include "simulator/agenda.h"
#include "simulator/random.h"

namespace varkel::sim {

// The numbers are those of "+CREG:" (3GPP TS 27.007, 7.2).
enum class Registration { None = 0, Home = 1, Searching = 2 };

class Radio {
  public:
    Radio(Agenda& agenda, std::uint64_t seed, int signal);

    // The SIM can be used: registers after `searchTime` where there is a network.
    void Start(Millis searchTime, Millis now);
    void Stop(Millis now);
    void SetCoverage(bool covered, Millis now);

    Registration State() const;
    bool Registered() const { return State() == Registration::Home; }

    // 0 to 31, or 99 for unknown (27.007, 8.5).
    void SetSignal(int rssi);
    // From now on every measurement differs a little from the last one.
    void Vary() { m_varying = true; }
    // Measures: 99 while not registered.
    int Rssi();
    int Signal() const { return m_signal; }
    bool Varying() const { return m_varying; }

    std::function<void(Millis)> onRegistration;

    static constexpr int unknownSignal = 99;
    static constexpr int bestSignal = 31;

  private:
    void Search(Millis now);
    void Become(Registration state, Millis now);

    Agenda& m_agenda;
    Random m_random;
    bool m_covered = true;
    bool m_running = false;
    Registration m_state = Registration::None;
    Millis m_searchTime = 0;
    int m_signal;
    bool m_varying = false;
};

}  // namespace varkel::sim
