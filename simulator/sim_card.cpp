#include "simulator/sim_card.h"

#include <algorithm>

namespace varkel::sim {

namespace {

constexpr std::array<int, simCodeCount> mostTries{3, 10, 3, 10, 10, 10};

constexpr int MostTries(SimCode code) {
    return mostTries[static_cast<std::size_t>(code)];
}

}  // namespace

SimCard::SimCard(const SimConfig& config)
    : inserted(config.inserted),
      imsi(config.imsi),
      serviceCentre(config.serviceCentre),
      phonebook(config.phonebookSlots, config.nameOctets),
      messages(config.messageSlots),
      m_pinRequest(config.pinRequest) {
    for (std::size_t i = 0; i < simCodeCount; ++i)
        m_secrets[i] = {config.codes[i], mostTries[i]};
}

void SimCard::Reset() {
    m_verified = false;
    m_alsoAsks = m_nextAsks;
}

SimAsks SimCard::Asks() const {
    if (At(SimCode::Puk).tries == 0) return SimAsks::Dead;
    if (At(SimCode::Pin).tries == 0 && !m_verified) return SimAsks::Puk;
    if (m_pinRequest && !m_verified) return SimAsks::Pin;
    if (m_alsoAsks == SimAsks::Pin2 && At(SimCode::Pin2).tries == 0) return SimAsks::Puk2;
    return m_alsoAsks;
}

CodeResult SimCard::Try(SimCode code, std::string_view entered) {
    Secret& secret = At(code);
    if (secret.tries == 0) return CodeResult::Blocked;
    if (entered == secret.value) {
        secret.tries = MostTries(code);
        return CodeResult::Right;
    }
    if (--secret.tries > 0) return CodeResult::Wrong;
    if (code == SimCode::Pin) m_verified = false;
    return CodeResult::Blocked;
}

CodeResult SimCard::Unblock(SimCode puk, SimCode pin, std::string_view entered, std::string_view newPin) {
    if (!WellFormed(puk, entered) || !WellFormed(pin, newPin)) return CodeResult::Refused;
    const CodeResult result = Try(puk, entered);
    if (result == CodeResult::Right) At(pin) = {std::string(newPin), MostTries(pin)};
    return result;
}

CodeResult SimCard::Enter(std::string_view code, std::string_view newCode) {
    const SimAsks asks = Asks();
    if (asks == SimAsks::Puk || asks == SimAsks::Puk2) {
        const bool first = asks == SimAsks::Puk;
        const CodeResult result = Unblock(first ? SimCode::Puk : SimCode::Puk2,
                                          first ? SimCode::Pin : SimCode::Pin2, code, newCode);
        if (result != CodeResult::Right) return result;
        if (first) {
            m_verified = true;
        } else {
            m_alsoAsks = m_nextAsks = SimAsks::Nothing;
        }
        return result;
    }
    const auto asked = [asks]() -> SimCode {
        if (asks == SimAsks::Pin2) return SimCode::Pin2;
        if (asks == SimAsks::PhSim) return SimCode::PhSim;
        if (asks == SimAsks::PhNet) return SimCode::PhNet;
        return SimCode::Pin;
    }();
    const bool nothing = asks == SimAsks::Nothing || asks == SimAsks::Dead;
    if (nothing || !newCode.empty() || !WellFormed(asked, code)) return CodeResult::Refused;
    const CodeResult result = Try(asked, code);
    if (result != CodeResult::Right) return result;
    if (asks == SimAsks::Pin) {
        m_verified = true;
    } else {
        m_alsoAsks = m_nextAsks = SimAsks::Nothing;
    }
    return result;
}

CodeResult SimCard::RequestPin(std::string_view pin, bool on) {
    if (Asks() != SimAsks::Nothing || !WellFormed(SimCode::Pin, pin)) return CodeResult::Refused;
    const CodeResult result = Try(SimCode::Pin, pin);
    if (result != CodeResult::Right) return result;
    m_pinRequest = on;
    m_verified = true;
    return result;
}

CodeResult SimCard::ChangePin(std::string_view pin, std::string_view newPin) {
    const bool wellFormed = WellFormed(SimCode::Pin, pin) && WellFormed(SimCode::Pin, newPin);
    if (Asks() != SimAsks::Nothing || !m_pinRequest || !wellFormed) return CodeResult::Refused;
    const CodeResult result = Try(SimCode::Pin, pin);
    if (result == CodeResult::Right) At(SimCode::Pin).value = newPin;
    return result;
}

void SimCard::SetPin(std::string_view pin) {
    m_verified = Asks() == SimAsks::Nothing;
    At(SimCode::Pin) = {std::string(pin), MostTries(SimCode::Pin)};
    m_pinRequest = true;
}

void SimCard::ForgetPin() {
    At(SimCode::Pin).tries = MostTries(SimCode::Pin);
    m_pinRequest = false;
}

void SimCard::BlockPin(std::string_view puk) {
    m_verified = Asks() == SimAsks::Nothing;
    At(SimCode::Puk) = {std::string(puk), MostTries(SimCode::Puk)};
    At(SimCode::Pin).tries = 0;
    m_pinRequest = true;
}

void SimCard::AskFor(SimCode code, std::string_view value) {
    At(code) = {std::string(value), MostTries(code)};
    if (code == SimCode::Puk2) At(SimCode::Pin2).tries = 0;
    constexpr std::array<SimAsks, simCodeCount> asks{SimAsks::Nothing, SimAsks::Nothing, SimAsks::Pin2,
                                                     SimAsks::Pin2,    SimAsks::PhSim,   SimAsks::PhNet};
    m_nextAsks = asks[static_cast<std::size_t>(code)];
}

bool SimCard::WellFormed(SimCode code, std::string_view text) {
    const bool modules = code == SimCode::PhSim || code == SimCode::PhNet;
    const bool puk = code == SimCode::Puk || code == SimCode::Puk2;
    const std::size_t shortest = puk ? 8 : 4;
    const std::size_t longest = modules ? 16 : 8;
    return text.size() >= shortest && text.size() <= longest &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view CpinText(SimAsks asks) {
    constexpr std::array<std::string_view, 8> texts{"READY",    "SIM PIN",    "SIM PUK",    "SIM PIN2",
                                                    "SIM PUK2", "PH-SIM pin", "PH-NET pin", ""};
    return texts[static_cast<std::size_t>(asks)];
}

}  // namespace varkel::sim
