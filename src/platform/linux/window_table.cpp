#include "platform/linux/window_table.h"

#include <algorithm>
#include <utility>

namespace varkel {

WindowTable::WindowTable(MessageLoop& loop, ProblemSink onProblem)
    : m_loop(loop), m_onProblem(std::move(onProblem)) {}

std::optional<WindowIndex> WindowTable::Add(std::string_view title, WindowProcedure procedure) {
    std::lock_guard lock(m_mutex);
    if (m_lastIndex == 255) return std::nullopt;
    const auto index = static_cast<WindowIndex>(++m_lastIndex);
    m_windows[index] = {std::string(title), std::make_shared<const WindowProcedure>(std::move(procedure))};
    return index;
}

bool WindowTable::Remove(WindowIndex window) {
    std::lock_guard lock(m_mutex);
    return m_windows.erase(window) != 0;
}

void WindowTable::RemoveAll() {
    std::lock_guard lock(m_mutex);
    m_windows.clear();
}

bool WindowTable::SetTitle(WindowIndex window, std::string_view title) {
    std::lock_guard lock(m_mutex);
    const auto found = m_windows.find(window);
    if (found == m_windows.end()) return false;
    found->second.title = title;
    return true;
}

std::optional<std::string> WindowTable::Title(WindowIndex window) const {
    std::lock_guard lock(m_mutex);
    const auto found = m_windows.find(window);
    if (found == m_windows.end()) return std::nullopt;
    return found->second.title;
}

std::optional<WindowIndex> WindowTable::Find(std::string_view title) const {
    std::lock_guard lock(m_mutex);
    for (const auto& [index, window] : m_windows) {
        if (window.title == title) return index;
    }
    return std::nullopt;
}

bool WindowTable::Deliver(WindowIndex window, const WindowMessage& message) {
    return PostToWindow(window, [message](const WindowProcedure& procedure) {
        if (procedure.onMessage) procedure.onMessage(message);
    });
}

bool WindowTable::DeliverToAll(const WindowMessage& message) {
    std::vector<WindowIndex> windows;
    {
        std::lock_guard lock(m_mutex);
        for (const auto& [index, window] : m_windows)
            windows.push_back(index);
    }
    bool delivered = true;
    for (const WindowIndex window : windows)
        delivered &= Deliver(window, message);
    return delivered;
}

bool WindowTable::DeliverCopyData(WindowIndex window, std::uint32_t dwData, std::vector<std::byte> data,
                                  std::function<void(std::uint32_t)> onResult) {
    return PostToWindow(window, [dwData, data = std::move(data),
                                 onResult = std::move(onResult)](const WindowProcedure& procedure) {
        onResult(procedure.onCopyData ? procedure.onCopyData(dwData, data) : 0);
    });
}

bool WindowTable::PostToWindow(WindowIndex window, std::function<void(const WindowProcedure&)> work) {
    if (!Procedure(window)) return false;
    const bool posted = m_waiting.fetch_add(1) < mostWaiting &&
                        m_loop.Post([self = shared_from_this(), window, work = std::move(work)] {
                            --self->m_waiting;
                            if (const auto procedure = self->Procedure(window)) work(*procedure);
                        });
    if (!posted) {
        --m_waiting;
        if (!m_dropping.exchange(true))
            Report(m_onProblem, "too many window messages wait; new ones are dropped");
        return false;
    }
    m_dropping = false;
    return true;
}

std::shared_ptr<const WindowProcedure> WindowTable::Procedure(WindowIndex window) const {
    std::lock_guard lock(m_mutex);
    const auto found = m_windows.find(window);
    return found == m_windows.end() ? nullptr : found->second.procedure;
}

MessageId WindowTable::RegisterName(std::string_view name) {
    constexpr std::size_t limit = WindowMessages::messageNameLimit;
    std::lock_guard lock(m_mutex);
    auto found = std::find(m_names.begin(), m_names.end(), name);
    if (found == m_names.end()) {
        const bool valid = !name.empty() && name.size() <= limit && name.find('\0') == std::string_view::npos;
        if (!valid || m_names.size() == limit) return 0;
        found = m_names.insert(m_names.end(), std::string(name));
    }
    return firstRegisteredMessage + static_cast<MessageId>(found - m_names.begin());
}

MessageId WindowTable::IdOf(std::string_view name) const {
    std::lock_guard lock(m_mutex);
    const auto found = std::find(m_names.begin(), m_names.end(), name);
    if (found == m_names.end()) return 0;
    return firstRegisteredMessage + static_cast<MessageId>(found - m_names.begin());
}

std::string WindowTable::NameOf(MessageId id) const {
    std::lock_guard lock(m_mutex);
    if (id < firstRegisteredMessage || id - firstRegisteredMessage >= m_names.size()) return {};
    return m_names[id - firstRegisteredMessage];
}

}  // namespace varkel
