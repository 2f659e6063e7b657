#include "stores/phone_book_file.h"

namespace varkel {

namespace {

// The first number comes last, as everywhere in the unit.
constexpr std::array<std::size_t, 4> orderOfNumbers{1, 2, 3, 0};

bool HasNumber(const PhoneBookRecord& record, std::string_view number) {
    return std::any_of(orderOfNumbers.begin(), orderOfNumbers.end(),
                       [&](std::size_t i) { return record.numbers[i] == number; });
}

}  // namespace

PhoneBookFile::PhoneBookFile(UnitFiles& files, Log& log)
    : m_log(log), m_file(files, log, {.path = "NandFlash\\System\\Phone\\phonebook.msm"}) {}

PhoneBookFile::List PhoneBookFile::Load() {
    const Opened opened(m_log);
    return m_file.Load();
}

std::optional<std::string> PhoneBookFile::FindName(std::string_view number) {
    if (number.empty()) return std::nullopt;
    for (const PhoneBookRecord& record : Load()) {
        if (HasNumber(record, number)) return std::string(record.name.View());
    }
    return std::nullopt;
}

StoreResult PhoneBookFile::Add(const PhoneBookRecord& record) {
    const Opened opened(m_log);
    return m_file.Append(record, SpaceGuard::On);
}

StoreResult PhoneBookFile::Change(const PhoneBookRecord& seen, std::size_t index,
                                  const PhoneBookRecord& changed) {
    const Opened opened(m_log);
    return m_file.Change(seen, index, changed);
}

StoreResult PhoneBookFile::Delete(const PhoneBookRecord& seen, std::size_t index) {
    const Opened opened(m_log);
    return m_file.Delete(seen, index);
}

}  // namespace varkel
