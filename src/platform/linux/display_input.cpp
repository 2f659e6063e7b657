#include "platform/linux/display_input.h"

#include <utility>

namespace varkel {

DisplayInput::DisplayInput(MessageLoop& loop) : m_loop(loop) {}

void DisplayInput::Put(InputEvent event) {
    {
        std::lock_guard lock(m_mutex);
        if (!Take(std::move(event)) || std::exchange(m_posted, true)) return;
    }
    ServeSoon();
}

bool DisplayInput::Take(InputEvent&& event) {
    const bool full = m_events.size() >= limit;
    const auto* const touch = std::get_if<TouchEvent>(&event);
    if (!touch && full) return false;
    if (touch && touch->action == TouchAction::Down && (full || std::exchange(m_touching, true)))
        return false;
    if (touch && touch->action == TouchAction::Up && !std::exchange(m_touching, false)) return false;
    if (touch && touch->action == TouchAction::Move) {
        auto* const last = m_events.empty() ? nullptr : std::get_if<TouchEvent>(&m_events.back());
        if (last && last->action == TouchAction::Move) {
            *last = *touch;
            return false;
        }
        if (full) return false;
    }
    m_events.push_back(std::move(event));
    return true;
}

void DisplayInput::ServeSoon() {
    const bool posted = m_loop.Post([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->Serve();
    });
    if (posted) return;
    // The next event tries again.
    std::lock_guard lock(m_mutex);
    m_posted = false;
}

void DisplayInput::Serve() {
    std::unique_lock lock(m_mutex);
    if (m_events.empty()) return;
    const InputEvent event = std::move(m_events.front());
    m_events.pop_front();
    m_posted = !m_events.empty();
    const bool more = m_posted;
    lock.unlock();
    if (more) ServeSoon();
    if (const Handler handler = m_handler) handler(event);
}

void DisplayInput::SetCursorPos(Point at) {
    std::lock_guard lock(m_mutex);
    m_cursor = at;
}

Point DisplayInput::GetCursorPos() const {
    std::lock_guard lock(m_mutex);
    return m_cursor;
}

}  // namespace varkel
