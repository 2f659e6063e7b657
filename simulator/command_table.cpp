#include "simulator/command_table.h"

#include <optional>

#include "simulator/modem.h"

namespace varkel::sim {

namespace {

Handler HandlerOf(const CommandEntry& entry, Form form) {
    switch (form) {
        case Form::Execute: return entry.execute;
        case Form::Read: return entry.read;
        case Form::Set: return entry.set;
        case Form::Test: return entry.test;
    }
    return nullptr;
}

Outcome TestForm(const CommandEntry& entry, Exchange& exchange) {
    if (!entry.ranges.empty()) {
        exchange.info.push_back(std::string(entry.name) + ": " + std::string(entry.ranges));
    } else if (entry.setting) {
        exchange.info.push_back(std::string(entry.name) + ": (" + std::to_string(entry.low) + "-" +
                                std::to_string(entry.high) + ")");
    } else if (!entry.execute && !entry.read && !entry.set) {
        return Outcome::Error();
    }
    return Outcome::Ok();
}

Outcome SettingForm(const CommandEntry& entry, Exchange& exchange) {
    int& value = exchange.modem.Settings().*entry.setting;
    if (exchange.command.form == Form::Read) {
        exchange.info.push_back(std::string(entry.name) + ": " + std::to_string(value));
        return Outcome::Ok();
    }
    const auto number = exchange.command.Number(0);
    const bool one = exchange.command.arguments.size() == 1;
    if (!one || !number || *number < entry.low || *number > entry.high) return Outcome::Error();
    value = *number;
    return Outcome::Ok();
}

}  // namespace

const CommandEntry* FindCommand(std::string_view name, ModemKind kind) {
    for (const auto table : {GeneralCommands(), SimCommands(), PhonebookCommands(), NetworkCommands(),
                             CallCommands(), MessageCommands()}) {
        for (const CommandEntry& entry : table) {
            if (entry.name != name) continue;
            return entry.own && kind != ModemKind::Unit ? nullptr : &entry;
        }
    }
    return nullptr;
}

Outcome CarryOut(const CommandEntry* entry, Exchange& exchange) {
    if (!entry) return Outcome::Error();
    const Form form = exchange.command.form;
    if (form == Form::Test && !entry->test) return TestForm(*entry, exchange);
    const auto fault = form == Form::Test ? std::nullopt : exchange.modem.CardFault(entry->needs);
    if (fault) return Outcome::Fault(*fault);
    if (const Handler handler = HandlerOf(*entry, form)) return handler(exchange);
    const bool setting = entry->setting && (form == Form::Read || form == Form::Set);
    return setting ? SettingForm(*entry, exchange) : Outcome::Error();
}

}  // namespace varkel::sim
