// How a kind of module is spoken to where modules differ; all else is the same for each of them.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "modem/at_channel.h"
#include "platform/runtime.h"

namespace varkel {

struct InitStep {
    void (*send)(CATChannel& at);
    Ticks pause;  // after the command
};

// What tells that the module has started.
enum class ReadySign {
    Indication,  // "+URCIND:5", or "+URCIND:3" for a SIM that cannot be used
    Answers,     // it answers "AT", and says something of the SIM to "AT+CPIN?"
};

struct ModemProfile {
    const char* name;  // as the unit file has it
    ReadySign ready;
    // Sent as soon as the port is open.
    std::span<const InitStep> greeting;
    // The access mode: 1 and 3 are UMTS and GSM alone, 2 and 4 prefer one of them, others leave it open.
    void (*setNetworkMode)(CATChannel& at, int mode);
    void (*enterPin)(CATChannel& at, const PhCode& code);
    void (*enterPuk)(CATChannel& at, const PinCode& puk, const PinCode& pin);
    // The answers to "AT+CPIN?" in the order of SimState.
    std::array<std::string_view, 7> simAnswers;
    // Prepares the registered module up to the point where the call lists are loaded.
    std::span<const InitStep> beforeRecords;
};

// The module that the unit is made with.
extern const ModemProfile unitModule;
// Any module that knows 3GPP TS 27.007 and 27.005.
extern const ModemProfile standardModule;

// From the call lists to the SIM's phonebook; alike for all.
std::span<const InitStep> InitStepsBeforePhonebook();

}  // namespace varkel
