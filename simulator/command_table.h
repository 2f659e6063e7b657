// The modem's commands: one table for each subject, one row for each command.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/at_line.h"
#include "simulator/modem_settings.h"
#include "simulator/result_codes.h"

namespace varkel::sim {

class Modem;

// One command while it is carried out.
struct Exchange {
    Modem& modem;
    const AtCommand& command;
    Millis now;
    // The lines of the answer in front of the final result.
    std::vector<std::string> info;
};

// What must be there before the command does anything; a test form (=?) needs nothing.
enum class Needs {
    Nothing,
    Card,          // a SIM that answers, locked or not
    UnlockedCard,  // and waits for no code
    ReadyCard,     // and has been read
};

// How long the answer takes, see ModemTimes.
enum class Pace { Quick, Sim, Dial };

using Handler = Outcome (*)(Exchange&);

// A form without a handler is an error, unless `setting` or `ranges` covers it.
struct CommandEntry {
    std::string_view name;
    Needs needs = Needs::Nothing;
    Pace pace = Pace::Quick;
    Handler execute = nullptr;
    Handler read = nullptr;
    Handler set = nullptr;
    Handler test = nullptr;
    // The read form gives this number and the set form takes it from `low` to `high`.
    int ModemSettings::*setting = nullptr;
    int low = 0;
    int high = 1;
    // What the test form says behind the name.
    std::string_view ranges = {};
    // Only the unit's own module has it.
    bool own = false;
};

std::span<const CommandEntry> GeneralCommands();
std::span<const CommandEntry> SimCommands();
std::span<const CommandEntry> PhonebookCommands();
std::span<const CommandEntry> NetworkCommands();
std::span<const CommandEntry> CallCommands();
std::span<const CommandEntry> MessageCommands();

// Null when this kind of module has no such command.
const CommandEntry* FindCommand(std::string_view name, ModemKind kind);

// Null entry: an unknown command.
Outcome CarryOut(const CommandEntry* entry, Exchange& exchange);

}  // namespace varkel::sim
