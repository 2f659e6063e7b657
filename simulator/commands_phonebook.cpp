// Commands of the SIM's phonebook (3GPP TS 27.007, 8.11 to 8.14).
#include "simulator/command_table.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

constexpr int nationalNumber = 129;
constexpr int internationalNumber = 145;

Outcome PhonebookOutcome(PhonebookResult result) {
    switch (result) {
        case PhonebookResult::Done: return Outcome::Ok();
        case PhonebookResult::NoSuchSlot: return Outcome::Fault(Cme::InvalidIndex);
        case PhonebookResult::Full: return Outcome::Fault(Cme::MemoryFull);
        case PhonebookResult::NameTooLong: return Outcome::Fault(Cme::TextTooLong);
        case PhonebookResult::NumberTooLong: return Outcome::Fault(Cme::NumberTooLong);
        case PhonebookResult::NumberInvalid: return Outcome::Fault(Cme::InvalidNumber);
    }
    return Outcome::Error();
}

Outcome ReadStorage(Exchange& exchange) {
    const SimPhonebook& book = exchange.modem.Sim().phonebook;
    exchange.info.push_back("+CPBS: \"SM\"," + std::to_string(book.Used()) + "," +
                            std::to_string(book.Slots()));
    return Outcome::Ok();
}

Outcome SetStorage(Exchange& exchange) {
    if (exchange.command.Text(0) != "SM") return Outcome::Fault(Cme::OperationNotSupported);
    return Outcome::Ok();
}

Outcome TestRead(Exchange& exchange) {
    const SimPhonebook& book = exchange.modem.Sim().phonebook;
    exchange.info.push_back("+CPBR: (1-" + std::to_string(book.Slots()) + ")," +
                            std::to_string(SimPhonebook::longestNumber) + "," +
                            std::to_string(book.NameOctets()));
    return Outcome::Ok();
}

Outcome ReadEntries(Exchange& exchange) {
    const SimPhonebook& book = exchange.modem.Sim().phonebook;
    const auto first = exchange.command.Number(0);
    if (!first) return Outcome::Error();
    const auto last = exchange.command.Number(1, *first);
    if (!last || exchange.command.arguments.size() > 2) return Outcome::Error();
    if (!book.Has(*first) || !book.Has(*last)) return Outcome::Fault(Cme::InvalidIndex);
    for (int slot = *first; slot <= *last; ++slot) {
        const PhonebookEntry* const entry = book.Find(slot);
        if (!entry) continue;
        exchange.info.push_back("+CPBR: " + std::to_string(slot) + ",\"" + entry->number + "\"," +
                                std::to_string(entry->type) + ",\"" +
                                OnLine(entry->name, exchange.modem.Settings().charset) + "\"");
    }
    return Outcome::Ok();
}

Outcome TestWrite(Exchange& exchange) {
    const SimPhonebook& book = exchange.modem.Sim().phonebook;
    exchange.info.push_back("+CPBW: (1-" + std::to_string(book.Slots()) + ")," +
                            std::to_string(SimPhonebook::longestNumber) + ",(129,145)," +
                            std::to_string(book.NameOctets()));
    return Outcome::Ok();
}

// An index alone deletes the entry; without an index the entry goes to the first free slot.
Outcome WriteEntry(Exchange& exchange) {
    const AtCommand& command = exchange.command;
    SimPhonebook& book = exchange.modem.Sim().phonebook;
    const bool anywhere = !command.arguments.empty() && command.arguments[0].Omitted();
    const auto slot = command.Number(0, 0);
    if (!slot || command.arguments.size() > 4) return Outcome::Error();
    if (!anywhere && *slot == 0) return Outcome::Fault(Cme::InvalidIndex);
    if (command.arguments.size() == 1 && !anywhere) return PhonebookOutcome(book.Delete(*slot));
    const std::string number(command.Text(1));
    const bool plus = number.starts_with('+');
    const auto type = command.Number(2, plus ? internationalNumber : nationalNumber);
    if (number.empty() || !type || (*type != nationalNumber && *type != internationalNumber))
        return Outcome::Fault(Cme::IncorrectParameters);
    const auto name = FromLine(command.Text(3), exchange.modem.Settings().charset);
    if (!name) return Outcome::Fault(Cme::InvalidText);
    return PhonebookOutcome(book.Write(*slot, {number, *type, *name}));
}

constexpr CommandEntry commands[] = {
    {.name = "+CPBS",
     .needs = Needs::ReadyCard,
     .pace = Pace::Sim,
     .read = ReadStorage,
     .set = SetStorage,
     .ranges = "(\"SM\")"},
    {.name = "+CPBR", .needs = Needs::ReadyCard, .pace = Pace::Sim, .set = ReadEntries, .test = TestRead},
    {.name = "+CPBW", .needs = Needs::ReadyCard, .pace = Pace::Sim, .set = WriteEntry, .test = TestWrite},
};

}  // namespace

std::span<const CommandEntry> PhonebookCommands() {
    return commands;
}

}  // namespace varkel::sim
