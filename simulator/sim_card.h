// The SIM card: its codes, and what it keeps while the module is off.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "simulator/message_store.h"
#include "simulator/sim_phonebook.h"

namespace varkel::sim {

// The codes, in the order of their place in SimConfig::codes. The last two belong to the module, which asks
// for them on behalf of a card that it does not want to know.
enum class SimCode { Pin, Puk, Pin2, Puk2, PhSim, PhNet };
inline constexpr std::size_t simCodeCount = 6;

struct SimConfig {
    bool inserted = true;
    bool pinRequest = false;  // whether the PIN is asked for
    std::array<std::string, simCodeCount> codes{"1234",     "12345678", "5678",
                                                "87654321", "12341234", "43214321"};
    std::string imsi = "460001234567890";
    std::string serviceCentre = "+8613800100500";
    int phonebookSlots = 250;
    int nameOctets = 20;  // longest name: 20 characters of the default alphabet, or 9 of others
    int messageSlots = 20;
};

// What a card that is looked at waits for. Dead: its PUK was wrong too often.
enum class SimAsks { Nothing, Pin, Puk, Pin2, Puk2, PhSim, PhNet, Dead };

enum class CodeResult {
    Right,
    Wrong,
    Blocked,  // wrong, and the code's tries are used up
    Refused,  // not asked for, or no code at all; nothing was counted
};

class SimCard {
  public:
    explicit SimCard(const SimConfig& config);

    bool inserted;
    std::string imsi;
    std::string serviceCentre;
    SimPhonebook phonebook;
    MessageStore messages;

    // The card was powered: its codes are asked for again.
    void Reset();
    SimAsks Asks() const;
    int Tries(SimCode code) const { return At(code).tries; }

    // Gives the code that is asked for; a PUK comes with the new code.
    CodeResult Enter(std::string_view code, std::string_view newCode);
    // Switches the request for the PIN on or off.
    CodeResult RequestPin(std::string_view pin, bool on);
    bool PinRequest() const { return m_pinRequest; }
    CodeResult ChangePin(std::string_view pin, std::string_view newPin);

    // The simulation's doing. A card in use goes on as it is; it asks when it is next powered.
    void SetPin(std::string_view pin);
    void ForgetPin();
    void BlockPin(std::string_view puk);
    void AskFor(SimCode code, std::string_view value);

    // 4 to 8 digits, as 3GPP TS 31.101 has them; the module's codes have up to 16.
    static bool WellFormed(SimCode code, std::string_view text);

  private:
    struct Secret {
        std::string value;
        int tries = 0;
    };

    Secret& At(SimCode code) { return m_secrets[static_cast<std::size_t>(code)]; }
    const Secret& At(SimCode code) const { return m_secrets[static_cast<std::size_t>(code)]; }
    CodeResult Try(SimCode code, std::string_view entered);
    CodeResult Unblock(SimCode puk, SimCode pin, std::string_view entered, std::string_view newPin);

    std::array<Secret, simCodeCount> m_secrets;
    bool m_pinRequest;
    bool m_verified = false;  // the PIN was given since the card was powered
    SimAsks m_alsoAsks = SimAsks::Nothing;
    SimAsks m_nextAsks = SimAsks::Nothing;  // what m_alsoAsks becomes when the card is next powered
};

// "READY", "SIM PIN", ... as +CPIN: says it.
std::string_view CpinText(SimAsks asks);

}  // namespace varkel::sim
