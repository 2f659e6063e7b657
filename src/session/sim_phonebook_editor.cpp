#include "session/sim_phonebook_editor.h"

#include <algorithm>

#include "platform/text.h"

namespace varkel {

namespace {

constexpr Ticks longestRequest = 3000;  // how long others' requests may keep a change waiting
constexpr Ticks settingLimit = 2000;
constexpr Ticks readLimit = 2000;
constexpr Ticks writeLimit = 5000;
constexpr Ticks slice = 10;
// Of the slots that could not be read, so many are looked at for a free one.
constexpr int mostLooks = 20;

// A name with such characters is stored as one octet and two for each unit (3GPP TS 31.102, annex A).
bool NeedsUcs2(std::u16string_view name) {
    return std::any_of(name.begin(), name.end(), [](char16_t unit) { return unit > 0x7F; });
}

bool Exceeds(std::size_t length, int limit) {
    return limit > 0 && length > static_cast<std::size_t>(limit);
}

}  // namespace

SimPhonebookEditor::SimPhonebookEditor(Session& session, CommandTurn& turn, SimPhonebook& book)
    : m_session(session), m_turn(turn), m_book(book) {}

PhoneBookResult SimPhonebookEditor::Add(std::string_view name, std::string_view number) {
    Content content;
    if (const auto checked = Check(name, number, content); checked != PhoneBookResult::Done) return checked;
    std::optional<SimSlot> slot;
    if (const auto found = FindFreeSlot(slot); found != PhoneBookResult::Done) return found;
    return Write(*slot, content, name);
}

PhoneBookResult SimPhonebookEditor::Change(const SimEntry& seen, std::string_view name,
                                           std::string_view number) {
    Content content;
    if (const auto checked = Check(name, number, content); checked != PhoneBookResult::Done) return checked;
    if (!m_book.Holds(seen)) return PhoneBookResult::NotFound;
    return Write(*SimSlot::From(seen.slot), content, name);
}

PhoneBookResult SimPhonebookEditor::Delete(const SimEntry& seen) {
    if (!Reachable()) return PhoneBookResult::ModuleClosed;
    if (!m_book.Holds(seen)) return PhoneBookResult::NotFound;
    return InTurn([&] {
        const auto erase = [&] { m_session.at.cmd_delete_sim_num(*SimSlot::From(seen.slot)); };
        if (Ask(erase, writeLimit) != Answer::Ok) return Failure();
        m_book.Erase(seen.slot);
        return PhoneBookResult::Done;
    });
}

bool SimPhonebookEditor::Reachable() const {
    return m_session.at.LinkUp() && m_session.state.MainScreenMode != ScreenMode::Closed;
}

PhoneBookResult SimPhonebookEditor::Failure() const {
    return Reachable() ? PhoneBookResult::Refused : PhoneBookResult::ModuleClosed;
}

PhoneBookResult SimPhonebookEditor::Check(std::string_view name, std::string_view number,
                                          Content& content) const {
    if (!Reachable()) return PhoneBookResult::ModuleClosed;
    const SimBookLimits limits = m_book.Limits();
    // Whatever the coding, a character takes an octet at least.
    const bool tooLong = Exceeds(Utf16FromUtf8(name).size(), limits.name);
    if (tooLong || Ucs2HexName(name, content.name) != ValueFault::None) return PhoneBookResult::NameTooLong;
    std::string digits;
    std::copy_if(number.begin(), number.end(), std::back_inserter(digits),
                 [](char c) { return !DialRules::IsSeparator(c); });
    const ValueFault fault = SimNumber::Parse(digits, content.number);
    if (fault == ValueFault::Invalid) return PhoneBookResult::NumberInvalid;
    const std::size_t length = digits.size() - (digits.starts_with('+') ? 1 : 0);
    const bool fits = fault == ValueFault::None && !Exceeds(length, limits.number);
    return fits ? PhoneBookResult::Done : PhoneBookResult::NumberTooLong;
}

PhoneBookResult SimPhonebookEditor::FindFreeSlot(std::optional<SimSlot>& slot) {
    const std::vector<SimEntry> entries = m_book.Entries();
    int looks = 0;
    for (int number = 1; number <= m_book.Slots(); ++number) {
        const auto taken = [number](const SimEntry& entry) { return entry.slot == number; };
        if (std::any_of(entries.begin(), entries.end(), taken)) continue;
        slot = SimSlot::From(number);
        // Some entries are not in memory: this may be the slot of one, which must not be written over.
        bool free = m_book.Complete();
        if (!free && ++looks > mostLooks) break;
        if (!free) {
            if (const auto asked = LookAt(*slot, free); asked != PhoneBookResult::Done) return asked;
        }
        if (free) return PhoneBookResult::Done;
    }
    return PhoneBookResult::SimFull;
}

PhoneBookResult SimPhonebookEditor::LookAt(SimSlot slot, bool& free) {
    return InTurn([&] {
        m_book.ForgetContent();
        if (Ask([&] { m_session.at.cmd_get_sim_content(slot, slot); }, readLimit) == Answer::None)
            return Failure();
        // The answer for an empty slot is "OK" alone, or an error.
        free = !m_book.ContentCame();
        return PhoneBookResult::Done;
    });
}

PhoneBookResult SimPhonebookEditor::Write(SimSlot slot, const Content& content, std::string_view name) {
    CATChannel& at = m_session.at;
    const auto result = InTurn([&] {
        if (Ask([&] { at.cmd_set_cscs_ucs2(); }, settingLimit) != Answer::Ok) return Failure();
        m_session.platform.log.DebugOutput("\r\n%s\r\n", std::string(name).c_str());
        const Answer written =
            Ask([&] { at.cmd_set_sim_content(slot, content.name, content.number); }, writeLimit);
        // Everything else that goes out is in this character set.
        Ask([&] { at.cmd_set_cscs_gsm(); }, settingLimit);
        if (written != Answer::Ok) return Failure();
        m_book.Put({slot.Number(), std::string(content.number.View()), std::string(name)});
        return PhoneBookResult::Done;
    });
    const std::u16string units = Utf16FromUtf8(name);
    const bool likelyTooLong = NeedsUcs2(units) && Exceeds(1 + 2 * units.size(), m_book.Limits().name);
    return result == PhoneBookResult::Refused && likelyTooLong ? PhoneBookResult::NameTooLong : result;
}

PhoneBookResult SimPhonebookEditor::InTurn(const std::function<PhoneBookResult()>& change) {
    Runtime& runtime = m_session.platform.runtime;
    CATChannel& at = m_session.at;
    const Ticks start = runtime.GetTickCount();
    while (at.OneShotPending() && TicksSince(runtime.GetTickCount(), start) < longestRequest)
        runtime.Sleep(slice);
    PhoneBookResult result = PhoneBookResult::Busy;
    m_turn.OneShot([&] {
        if (!at.OneShotPending()) result = change();
    });
    return result;
}

SimPhonebookEditor::Answer SimPhonebookEditor::Ask(const std::function<void()>& send, Ticks limit) {
    Runtime& runtime = m_session.platform.runtime;
    OneShot& pending = m_session.at.phonebookPending;
    const Ticks start = runtime.GetTickCount();
    m_answer = Answer::Awaited;
    pending.Set(start);
    send();
    while (m_answer == Answer::Awaited) {
        const bool over = !m_session.at.LinkUp() || TicksSince(runtime.GetTickCount(), start) >= limit;
        // Whoever takes it first: an answer that comes at the last moment counts.
        if (over && pending.Take()) return Answer::None;
        runtime.Sleep(slice);
    }
    return m_answer;
}

}  // namespace varkel
