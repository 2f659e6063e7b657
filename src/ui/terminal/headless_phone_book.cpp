#include "ui/terminal/headless_phone_book.h"

#include <string>

#include "platform/text.h"

namespace varkel {

namespace {

const char* FailureText(PhoneBookResult result) {
    switch (result) {
        case PhoneBookResult::Done: break;
        case PhoneBookResult::NotFound: return "that entry is gone";
        case PhoneBookResult::NameTooLong: return "the name is too long";
        case PhoneBookResult::NumberTooLong: return "the number is too long";
        case PhoneBookResult::NumberInvalid: return "that is no number";
        case PhoneBookResult::VolumeFull: return "the flash is full";
        case PhoneBookResult::SimFull: return "the SIM is full";
        case PhoneBookResult::ModuleClosed: return "the modem is off";
        case PhoneBookResult::Busy: return "the modem is busy";
        case PhoneBookResult::Refused: return "it was not taken";
    }
    return "";
}

std::string_view Unquoted(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

void HeadlessPhoneBook::List(std::string_view part) {
    m_list = m_dialog.Phones().Find(PhoneBooks::Both, Unquoted(part));
    m_terminal.PrintLine("[phonebook] " + std::to_string(m_list.size()) +
                         (m_list.size() == 1 ? " entry" : " entries"));
    for (std::size_t row = 0; row < m_list.size(); ++row) {
        const PhoneText& text = m_list[row].text;
        std::string line = "  " + std::to_string(row + 1) + "  " + text.name;
        for (const std::string& number : text.numbers) {
            if (!number.empty()) line += "  " + number;
        }
        m_terminal.PrintLine(line + (m_list[row].book == PhoneBookKind::Sim ? "  (SIM)" : ""));
    }
}

bool HeadlessPhoneBook::Parse(std::string_view nameAndNumber, std::string& name, std::string& number) {
    const std::size_t blank = nameAndNumber.rfind(' ');
    if (blank == std::string_view::npos) {
        m_terminal.PrintLine("[error] a name and a number are wanted");
        return false;
    }
    name = Unquoted(Trimmed(nameAndNumber.substr(0, blank)));
    number = nameAndNumber.substr(blank + 1);
    return true;
}

const PhoneEntry* HeadlessPhoneBook::EntryOf(std::string_view row) {
    int number = 0;
    if (ParseInt(row, number) && number >= 1 && static_cast<std::size_t>(number) <= m_list.size())
        return &m_list[static_cast<std::size_t>(number) - 1];
    m_terminal.PrintLine("[error] the list has no entry \"" + std::string(CutUtf8(row, 20)) + "\"");
    return nullptr;
}

void HeadlessPhoneBook::Add(PhoneBookKind book, std::string_view nameAndNumber) {
    PhoneText text;
    if (!Parse(nameAndNumber, text.name, text.numbers[0])) return;
    m_dialog.Phones().Add(book, text, [this](PhoneBookResult result) { Report(result, "added"); });
}

void HeadlessPhoneBook::Change(std::string_view rowNameAndNumber) {
    const std::string_view row = rowNameAndNumber.substr(0, rowNameAndNumber.find(' '));
    const PhoneEntry* const entry = EntryOf(row);
    if (!entry) return;
    PhoneText text = entry->text;
    if (!Parse(Trimmed(rowNameAndNumber.substr(row.size())), text.name, text.numbers[0])) return;
    m_dialog.Phones().Change(*entry, text, [this](PhoneBookResult result) { Report(result, "changed"); });
}

void HeadlessPhoneBook::Remove(std::string_view row) {
    if (const PhoneEntry* const entry = EntryOf(row))
        m_dialog.Phones().Delete(*entry, [this](PhoneBookResult result) { Report(result, "removed"); });
}

void HeadlessPhoneBook::Find(std::string_view number) {
    m_terminal.PrintLine("[phonebook] " + std::string(number) + " is " + m_dialog.Phones().NameOf(number));
}

void HeadlessPhoneBook::Report(PhoneBookResult result, std::string_view done) {
    if (result == PhoneBookResult::Done)
        m_terminal.PrintLine("[phonebook] " + std::string(done));
    else
        m_terminal.PrintLine(std::string("[error] ") + FailureText(result));
}

}  // namespace varkel
