#include "session/listeners.h"

namespace varkel {

bool Listeners::Add(WindowHandle window) {
    if (window == WindowHandle::None || window == WindowHandle::Broadcast) return false;
    return m_list.With([window](List& list) {
        if (list.places.contains(window)) return true;
        if (list.places.size() >= limit) return false;
        list.places[window] = list.windows.insert(list.windows.end(), window);
        return true;
    });
}

void Listeners::Remove(WindowHandle window) {
    m_list.With([window](List& list) {
        const auto found = list.places.find(window);
        if (found == list.places.end()) return;
        list.windows.erase(found->second);
        list.places.erase(found);
    });
}

std::size_t Listeners::Size() const {
    return m_list.With([](const List& list) { return list.places.size(); });
}

void Listeners::Tell(WindowHandle window, LinkResult result) {
    m_windows.PostMessage(window, {notification, static_cast<std::uint32_t>(result.status),
                                   static_cast<std::uint32_t>(result.reason)});
}

void Listeners::TellAll(LinkResult result) {
    const std::list<WindowHandle> windows = m_list.With([](const List& list) { return list.windows; });
    for (const WindowHandle window : windows)
        Tell(window, result);
}

}  // namespace varkel
