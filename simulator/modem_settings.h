// What commands change in the modem, as it is after power-on; and what a scenario may change in its kind.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "simulator/charset.h"
#include "simulator/millis.h"
#include "simulator/network_clock.h"

namespace varkel::sim {

struct PdpContext {
    std::string type;
    std::string accessPoint;
};

// Lost at power-off; here as the unit's own module begins. Numbers rather than booleans and enumerations: the
// command table reads and writes them.
struct ModemSettings {
    int echo = 1;                 // ATE
    int errors = 2;               // AT+CMEE: 0 plain, 1 by number, 2 in words
    int startIndications = 0;     // AT+URCIND
    int simReports = 1;           // AT+CSMINS
    int registrationReports = 0;  // AT+CREG
    int callerNumber = 0;         // AT+CLIP
    int volume = 3;               // AT+CLVL
    int sidetone = 1;             // AT+SIDET
    int networkMode = 2;          // AT+MODODR
    int accessTechnology = -1;    // AT+COPS, the fourth parameter; any when it is left out
    int baudRate = 115200;        // AT+IPR
    int messageMode = 0;          // AT+CNMI, the first parameter
    int messageReports = 0;       // AT+CNMI, the second: 1 announces a stored message by "+CMTI:"
    int ussdReports = 0;          // AT+CUSD
    Charset charset = Charset::Gsm;
    std::map<int, int> echoCanceller;    // AT+ECHO, parameter and value
    std::map<int, PdpContext> contexts;  // AT+CGDCONT

    static constexpr int mostEchoParameters = 64;
    static constexpr int mostContexts = 16;
};

// How long the module takes; the ways in which real ones differ most.
struct ModemTimes {
    Millis boot = 2000;          // from power to the USB device
    Millis ready = 3000;         // from there to "+URCIND:"
    Millis simStart = 1000;      // from power or insertion to the SIM's first answer
    Millis simInit = 500;        // from READY to phonebook and messages
    Millis registration = 2000;  // from there to the network
    Millis reply = 20;
    Millis simReply = 60;  // of commands that read or write the SIM
    Millis dial = 20;      // from ATD to the far end's ringing; of ATA
    Millis send = 1500;    // of a message
    Millis ussd = 1000;    // from OK to the network's answer
    Millis data = 1000;    // from the dialling of a data call to the network's answer
};

// What the module reports when it has started: 5 = ready, 3 = no usable SIM.
enum class StartIndication {
    Honest,               // 3 while the SIM is locked or absent, 5 as soon as it can be used
    ReadyAlthoughLocked,  // 5 whatever the SIM says
    ThreeAlthoughReady,   // 3 whatever the SIM says
    Never,
};

// What the next messages that the program sends come to; a count goes down with each of them.
struct MessageFaults {
    int noPrompt = 0;  // the command is swallowed: no prompt, no result
    int fail = 0;      // the network does not take the message
    int noResult = 0;  // the network takes it, and the module says nothing
    Millis late = 0;   // every result comes this much later
};

enum class ModemKind {
    Unit,      // the module that the unit is made with
    Standard,  // one that has no more than the commands of 3GPP TS 27.007 and 27.005
};

// The settings after power-on.
ModemSettings FactorySettings(ModemKind kind);

struct ModemConfig {
    ModemKind kind = ModemKind::Unit;
    ModemTimes times;
    StartIndication indication = StartIndication::Honest;
    // AT+CPIN? without a card: "+CPIN: NOT READY" instead of an error.
    bool notReadyWithoutSim = false;
    std::string imei = "867959030000017";
    std::string operatorCode = "46000";
    std::string ussdAnswer = "Balance: 42.00";
    std::string ussdQuestion;  // comes first and waits for a reply; empty = there is none
    int signal = 18;
    MessageFaults messageFaults;
    NetworkClock clock;
};

}  // namespace varkel::sim
