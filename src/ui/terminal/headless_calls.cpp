#include "ui/terminal/headless_calls.h"

#include <array>
#include <string>

#include "platform/text.h"

namespace varkel {

namespace {

// In the order of CallKind.
constexpr std::array<std::string_view, 3> kinds{"dialled", "received", "missed"};

}  // namespace

CallList& HeadlessCalls::Shown() {
    CallLists& lists = m_dialog.Calls().Lists();
    switch (m_kind) {
        case CallKind::Received: return lists.received;
        case CallKind::Missed: return lists.missed;
        default: return lists.dialled;
    }
}

void HeadlessCalls::List(std::string_view kind) {
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (kind != kinds[i]) continue;
        m_kind = static_cast<CallKind>(i);
        Print();
        return;
    }
    m_terminal.PrintLine("[error] usage: calls dialled|received|missed");
}

void HeadlessCalls::Print() {
    m_list = Shown().FindCallRecord();
    m_terminal.PrintLine("[" + std::string(kinds[static_cast<std::size_t>(m_kind)]) + "] " +
                         std::to_string(m_list.size()) + (m_list.size() == 1 ? " call" : " calls"));
    const auto shown = [this](std::string_view narrow) { return Utf8FromNarrow(m_page, narrow); };
    for (std::size_t row = 0; row < m_list.size(); ++row) {
        const CallRecord& record = *AtRow(m_list, row);
        m_terminal.PrintLine("  " + std::to_string(row + 1) + "  " + shown(record.date.View()) + " " +
                             shown(record.time.View()) + "  " + shown(record.number.View()) + "  " +
                             shown(record.name.View()));
    }
}

void HeadlessCalls::Delete(std::string_view which) {
    int number = 0;
    StoreResult result = StoreResult::NotFound;
    if (which == "all") {
        result = Shown().DeleteAll();
    } else if (ParseInt(which, number) && number >= 1) {
        result = Shown().Delete(m_list, static_cast<std::size_t>(number) - 1);
    }
    if (result == StoreResult::NotFound) m_terminal.PrintLine("[error] that call is not in the list");
    if (result != StoreResult::Done && result != StoreResult::NotFound)
        m_terminal.PrintLine("[error] the flash cannot be written");
    Print();
}

}  // namespace varkel
