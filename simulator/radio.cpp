#include "simulator/radio.h"

#include <algorithm>

namespace varkel::sim {

Radio::Radio(Agenda& agenda, std::uint64_t seed, int signal)
    : m_agenda(agenda), m_random(seed), m_signal(signal) {}

void Radio::Start(Millis searchTime, Millis now) {
    m_running = true;
    m_searchTime = searchTime;
    Search(now);
}

void Radio::Stop(Millis now) {
    m_running = false;
    m_agenda.Drop(Topic::Radio);
    Become(Registration::None, now);
}

void Radio::SetCoverage(bool covered, Millis now) {
    if (covered == m_covered) return;
    m_covered = covered;
    if (m_running) Search(now);
}

Registration Radio::State() const {
    return m_state;
}

void Radio::Search(Millis now) {
    m_agenda.Drop(Topic::Radio);
    Become(Registration::Searching, now);
    if (!m_covered) return;
    m_agenda.At(now + m_searchTime, Topic::Radio, [this](Millis then) { Become(Registration::Home, then); });
}

void Radio::Become(Registration state, Millis now) {
    if (state == m_state) return;
    m_state = state;
    if (onRegistration) onRegistration(now);
}

void Radio::SetSignal(int rssi) {
    m_signal = rssi;
    m_varying = false;
}

int Radio::Rssi() {
    if (!Registered()) return unknownSignal;
    if (m_varying) {
        const int level = m_signal == unknownSignal ? 0 : m_signal;
        m_signal = std::clamp(level + static_cast<int>(m_random.Below(7)) - 3, 0, bestSignal);
    }
    return m_signal;
}

}  // namespace varkel::sim
