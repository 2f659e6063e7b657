#include "session/phone_book.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"

namespace varkel {

namespace {

PhoneBookResult ResultOf(StoreResult result) {
    switch (result) {
        case StoreResult::Done: return PhoneBookResult::Done;
        case StoreResult::NotFound: return PhoneBookResult::NotFound;
        case StoreResult::VolumeFull: return PhoneBookResult::VolumeFull;
        case StoreResult::Unreadable:
        case StoreResult::WriteFailed: break;
    }
    return PhoneBookResult::Refused;
}

bool HasOneNumber(const PhoneText& text) {
    return std::all_of(text.numbers.begin() + 1, text.numbers.end(),
                       [](const std::string& number) { return number.empty(); });
}

}  // namespace

std::string SearchKey(const PhoneText& text) {
    std::string key = text.name;
    for (const std::string& number : text.numbers)
        key.append("\n").append(number);
    return FoldCase(key);
}

PhoneBook::PhoneBook(Session& session, CommandTurn& turn)
    : m_session(session),
      m_file(session.platform.files, session.platform.log),
      m_sim(session),
      m_editor(session, turn, m_sim),
      m_worker(session.platform.runtime, "phonebook") {}

std::string PhoneBook::NameOf(std::string_view number) {
    const CodePage& page = m_session.platform.codePage;
    std::string name;
    if (const auto local = m_file.FindName(NarrowFromUtf8(page, number)))
        name = Utf8FromNarrow(page, *local);
    else
        name = m_sim.FindName(number).value_or("");
    return name.empty() ? std::string(number) : name;
}

std::vector<PhoneEntry> PhoneBook::Find(PhoneBooks shown, std::string_view part) {
    const std::string sought = FoldCase(part);
    std::vector<PhoneEntry> entries;
    const auto take = [&](PhoneEntry entry) {
        if (SearchKey(entry.text).find(sought) != std::string::npos) entries.push_back(std::move(entry));
    };
    if (shown != PhoneBooks::Sim) {
        const PhoneBookFile::List list = m_file.Load();
        for (std::size_t index = 0; index < list.size(); ++index)
            take(EntryOf(list[index], index));
    }
    if (shown != PhoneBooks::Local) {
        for (const SimEntry& simEntry : m_sim.Entries()) {
            PhoneEntry entry;
            entry.book = PhoneBookKind::Sim;
            entry.text = {simEntry.name, {simEntry.number}};
            entry.simEntry = simEntry;
            take(std::move(entry));
        }
    }
    return entries;
}

PhoneEntry PhoneBook::EntryOf(const PhoneBookRecord& record, std::size_t index) const {
    const CodePage& page = m_session.platform.codePage;
    PhoneEntry entry;
    entry.record = record;
    entry.index = index;
    entry.text.name = Utf8FromNarrow(page, record.name.View());
    for (std::size_t i = 0; i < record.numbers.size(); ++i)
        entry.text.numbers[i] = Utf8FromNarrow(page, record.numbers[i].View());
    return entry;
}

PhoneBookResult PhoneBook::MakeRecord(const PhoneText& text, PhoneBookRecord& record) const {
    const CodePage& page = m_session.platform.codePage;
    const auto fits = [&](const std::string& utf8, auto& field) {
        const std::string narrow = NarrowFromUtf8(page, utf8);
        field.Assign(narrow);
        return narrow.size() <= PhoneBookRecord::longestText;
    };
    if (!fits(text.name, record.name)) return PhoneBookResult::NameTooLong;
    for (std::size_t i = 0; i < record.numbers.size(); ++i) {
        if (!fits(text.numbers[i], record.numbers[i])) return PhoneBookResult::NumberTooLong;
    }
    return PhoneBookResult::Done;
}

void PhoneBook::Add(PhoneBookKind book, PhoneText text, Done done) {
    const auto add = [this, book, text = std::move(text)] {
        if (book == PhoneBookKind::Sim) {
            if (!HasOneNumber(text)) return PhoneBookResult::NumberInvalid;
            return m_editor.Add(text.name, text.numbers[0]);
        }
        PhoneBookRecord record;
        const PhoneBookResult made = MakeRecord(text, record);
        return made == PhoneBookResult::Done ? ResultOf(m_file.Add(record)) : made;
    };
    Start(add, std::move(done));
}

void PhoneBook::Change(PhoneEntry seen, PhoneText text, Done done) {
    const auto change = [this, seen = std::move(seen), text = std::move(text)] {
        if (seen.book == PhoneBookKind::Sim) {
            if (!HasOneNumber(text)) return PhoneBookResult::NumberInvalid;
            return m_editor.Change(seen.simEntry, text.name, text.numbers[0]);
        }
        PhoneBookRecord record;
        const PhoneBookResult made = MakeRecord(text, record);
        if (made != PhoneBookResult::Done) return made;
        return ResultOf(m_file.Change(seen.record, seen.index, record));
    };
    Start(change, std::move(done));
}

void PhoneBook::Delete(PhoneEntry seen, Done done) {
    const auto erase = [this, seen = std::move(seen)] {
        if (seen.book == PhoneBookKind::Sim) return m_editor.Delete(seen.simEntry);
        return ResultOf(m_file.Delete(seen.record, seen.index));
    };
    Start(erase, std::move(done));
}

void PhoneBook::Start(Work work, Done done) {
    MessageLoop& loop = m_session.platform.loop;
    const auto job = [&loop, work = std::move(work), done] {
        const PhoneBookResult result = work();
        loop.Post([done, result] { done(result); });
    };
    if (!m_worker.Post(job)) loop.Post([done = std::move(done)] { done(PhoneBookResult::Busy); });
}

}  // namespace varkel
