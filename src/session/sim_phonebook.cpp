#include "session/sim_phonebook.h"

#include <algorithm>

namespace varkel {

namespace {

constexpr int blockSlots = 10;
constexpr Ticks blockLimit = 2000;
constexpr Ticks slice = 10;
// An answer whose final result was lost has ended when nothing comes for this long.
constexpr Ticks quietTime = 200;
constexpr std::size_t longestLine = 1024;

constexpr std::string_view keyword = "+CPBR:";
constexpr std::string_view lineEnd = "\r\n";

}  // namespace

SimPhonebook::SimPhonebook(Session& session)
    : m_session(session), m_content(session.platform.runtime.CreateEvent(EventReset::Manual)) {}

int SimPhonebook::Slots() const {
    return std::min(m_session.state.m_nSimBookTotal.load(), SimSlot::largest);
}

bool SimPhonebook::Read(OpenWaits& waits) {
    const int total = Slots();
    m_entries.Set({});
    if (total < 2) return true;
    m_content->Reset();
    m_reading = true;
    bool goesOn = true;
    // With 10k+1 slots the last one is not read, as the unit has always had it.
    for (int last = blockSlots; goesOn && !Complete(); last += blockSlots) {
        goesOn = ReadBlock(last - blockSlots + 1, std::min(last, total), waits) && last + 1 < total;
    }
    m_reading = false;
    m_session.platform.log.Trace("[SimPhonebook]--%zu of %d entries read", m_entries.Get().size(),
                                 m_session.state.m_nSimBookUsed.load());
    return !waits.Cancelled();
}

// False when it was cancelled. The final result is awaited too: the lines may come in several chunks, and a
// block of empty slots has none.
bool SimPhonebook::ReadBlock(int first, int last, OpenWaits& waits) {
    CATChannel& at = m_session.at;
    Runtime& runtime = m_session.platform.runtime;
    const Ticks start = runtime.GetTickCount();
    const auto answered = [&] {
        const bool quiet = TicksSince(runtime.GetTickCount(), m_session.state.m_lastReceive) >= quietTime;
        return !at.phonebookPending.Pending() || (ContentCame() && quiet);
    };
    at.phonebookPending.Set(start);
    at.cmd_get_sim_content(*SimSlot::From(first), *SimSlot::From(last));
    const OpenWaits::Outcome outcome = waits.Until(answered, start, blockLimit, slice);
    at.phonebookPending.Take();
    m_content->Reset();
    return outcome != OpenWaits::Outcome::Cancelled;
}

void SimPhonebook::OnModuleClosed() {
    m_entries.Set({});
    m_limits.Set({});
    m_session.state.m_nSimBookUsed = 0;
    m_session.state.m_nSimBookTotal = 0;
}

void SimPhonebook::OnChunk(std::string_view chunk) {
    if (!m_reading) {
        m_unfinished.clear();
        return;
    }
    const std::size_t known = m_unfinished.size();
    m_unfinished.append(chunk);
    // A line that stands in one chunk comes by OnPhoneBookContent.
    const std::size_t end = m_unfinished.find(lineEnd);
    if (known > 0 && end != std::string::npos && m_unfinished.starts_with(keyword)) {
        TakeLine({m_unfinished.data(), end});
        m_content->Set();
    }
    const std::size_t last = m_unfinished.rfind(lineEnd);
    if (last != std::string::npos) m_unfinished.erase(0, last + lineEnd.size());
    if (m_unfinished.size() > longestLine) m_unfinished.clear();
}

void SimPhonebook::OnPhoneBookNum(std::string_view text) {
    const auto size = ParseSimBookSize(text);
    if (!size) return;
    m_session.state.m_nSimBookUsed = size->used;
    m_session.state.m_nSimBookTotal = size->total;
}

void SimPhonebook::OnPhoneBookTest(std::string_view text) {
    m_limits.Set(ParseSimBookLimits(text));
}

void SimPhonebook::OnPhoneBookContent(std::string_view text) {
    m_session.platform.log.Trace("[BTNEV]enter OnPhoneBookContent");
    for (std::size_t at = text.find(keyword); at != std::string_view::npos; at = text.find(keyword)) {
        text.remove_prefix(at);
        const std::size_t end = text.find(lineEnd);
        if (end == std::string_view::npos) break;
        TakeLine(text.substr(0, end));
        text.remove_prefix(end);
    }
    m_content->Set();
}

void SimPhonebook::TakeLine(std::string_view line) {
    auto entry = ParseSimEntry(line);
    if (!entry || Complete()) return;
    m_entries.With([&](std::vector<SimEntry>& entries) {
        const bool known = std::any_of(entries.begin(), entries.end(),
                                       [&](const SimEntry& other) { return other.slot == entry->slot; });
        if (!known) entries.push_back(std::move(*entry));
    });
}

std::optional<std::string> SimPhonebook::FindName(std::string_view number) {
    if (number.empty()) return std::nullopt;
    return m_entries.With([&](const std::vector<SimEntry>& entries) -> std::optional<std::string> {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&](const SimEntry& entry) { return entry.number == number; });
        if (found == entries.end()) return std::nullopt;
        return found->name;
    });
}

void SimPhonebook::Put(const SimEntry& entry) {
    const bool added = m_entries.With([&](std::vector<SimEntry>& entries) {
        const auto place = std::find_if(entries.begin(), entries.end(),
                                        [&](const SimEntry& other) { return other.slot == entry.slot; });
        if (place == entries.end()) {
            entries.push_back(entry);
            return true;
        }
        *place = entry;
        return false;
    });
    if (added) ++m_session.state.m_nSimBookUsed;
}

void SimPhonebook::Erase(int slot) {
    const auto erased = m_entries.With([slot](std::vector<SimEntry>& entries) {
        return std::erase_if(entries, [slot](const SimEntry& entry) { return entry.slot == slot; });
    });
    if (erased > 0) --m_session.state.m_nSimBookUsed;
}

bool SimPhonebook::Holds(const SimEntry& entry) {
    return m_entries.With([&](const std::vector<SimEntry>& entries) {
        return std::find(entries.begin(), entries.end(), entry) != entries.end();
    });
}

bool SimPhonebook::Complete() {
    const int used = m_session.state.m_nSimBookUsed;
    return m_entries.With([used](const std::vector<SimEntry>& entries) {
        return entries.size() >= static_cast<std::size_t>(std::max(used, 0));
    });
}

}  // namespace varkel
