// How a command ends (ITU-T V.250, 5.7; 3GPP TS 27.007, 9.2; TS 27.005, 3.2.5).
#pragma once

#include <string>
#include <string_view>

namespace varkel::sim {

// Errors of the equipment, by their numbers.
enum class Cme {
    OperationNotAllowed = 3,
    OperationNotSupported = 4,
    PhSimPinRequired = 5,
    SimNotInserted = 10,
    SimPinRequired = 11,
    SimPukRequired = 12,
    SimFailure = 13,
    SimBusy = 14,
    IncorrectPassword = 16,
    SimPin2Required = 17,
    SimPuk2Required = 18,
    MemoryFull = 20,
    InvalidIndex = 21,
    TextTooLong = 24,
    InvalidText = 25,
    NumberTooLong = 26,
    InvalidNumber = 27,
    NoNetworkService = 30,
    NetworkPinRequired = 40,
    IncorrectParameters = 50,
};

// Errors of the message service.
enum class Cms {
    OperationNotAllowed = 302,
    OperationNotSupported = 303,
    InvalidPduParameter = 304,
    InvalidMemoryIndex = 321,
    NoNetworkService = 331,
    NetworkTimeout = 332,
};

struct Exchange;

struct Outcome {
    enum class Kind { Ok, Error, Cme, Cms, NoCarrier, Prompt, Silent, Later };

    Kind kind = Kind::Ok;
    int code = 0;
    // Prompt: what becomes of the text that is entered.
    Outcome (*entered)(Exchange& exchange, std::string_view text) = nullptr;

    static Outcome Ok() { return {}; }
    static Outcome Error() { return {Kind::Error}; }
    static Outcome Fault(Cme code) { return {Kind::Cme, static_cast<int>(code)}; }
    static Outcome Fault(Cms code) { return {Kind::Cms, static_cast<int>(code)}; }
    static Outcome NoCarrier() { return {Kind::NoCarrier}; }
    // Nothing is answered, not even the lines that are ready.
    static Outcome Silent() { return {Kind::Silent}; }
    // The final result comes when it is known; until then the module takes other commands.
    static Outcome Later() { return {Kind::Later}; }
    static Outcome Prompt(Outcome (*entered)(Exchange&, std::string_view)) {
        return {Kind::Prompt, 0, entered};
    }
};

// The final result without its line ends; `errors` is the setting of AT+CMEE.
std::string FinalResult(const Outcome& outcome, int errors);

}  // namespace varkel::sim
