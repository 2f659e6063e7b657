#include "session/announced_slots.h"

#include <algorithm>
#include <utility>

namespace varkel {

void AnnouncedSlots::Queue(SimSlot slot) {
    State& state = At(slot);
    if (state.queued) return;
    state.queued = true;
    state.givenUp = false;
    m_queue.push_back(slot);
}

void AnnouncedSlots::Announce(SimSlot slot) {
    std::lock_guard lock(m_mutex);
    m_last = slot;
    if (!m_highest || slot.Number() > m_highest->Number()) m_highest = slot;
    At(slot).held = true;
    At(slot).emptied = false;
    At(slot).attempts = 0;
    Queue(slot);
    for (int number = 0; number <= SimSlot::largest; ++number) {
        const auto other = SimSlot::From(number);
        if (!At(*other).givenUp) continue;
        At(*other).attempts = 0;
        Queue(*other);
    }
}

std::optional<SimSlot> AnnouncedSlots::TakeNext() {
    std::lock_guard lock(m_mutex);
    if (m_queue.empty()) return std::nullopt;
    const SimSlot slot = m_queue.front();
    m_queue.pop_front();
    At(slot).queued = false;
    return slot;
}

void AnnouncedSlots::Done(SimSlot slot) {
    std::lock_guard lock(m_mutex);
    // A message that took the slot while the last one was being read is still to be read.
    if (At(slot).queued) return;
    At(slot) = {};
    At(slot).read = true;
}

void AnnouncedSlots::Deleted(SimSlot slot) {
    std::lock_guard lock(m_mutex);
    // Few modules have a slot 0; where there is none, deleting it is no danger.
    At(slot).emptied = slot.Number() > 0 || At(slot).read;
    At(slot).read = false;
}

bool AnnouncedSlots::Emptied(SimSlot slot) const {
    std::lock_guard lock(m_mutex);
    return m_slots[static_cast<std::size_t>(slot.Number())].emptied;
}

bool AnnouncedSlots::Knows(SimSlot slot) const {
    std::lock_guard lock(m_mutex);
    const State& state = m_slots[static_cast<std::size_t>(slot.Number())];
    return state.held || state.read;
}

int AnnouncedSlots::Known() const {
    std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(m_slots.begin(), m_slots.end(),
                                          [](const State& state) { return state.held || state.read; }));
}

bool AnnouncedSlots::Failed(SimSlot slot) {
    std::lock_guard lock(m_mutex);
    State& state = At(slot);
    if (state.queued) return true;
    state.givenUp = ++state.attempts >= mostAttempts;
    if (!state.givenUp) Queue(slot);
    return !state.givenUp;
}

void AnnouncedSlots::GiveUp(SimSlot slot) {
    std::lock_guard lock(m_mutex);
    if (!At(slot).queued) At(slot).givenUp = true;
}

std::optional<SimSlot> AnnouncedSlots::TakeHighest() {
    std::lock_guard lock(m_mutex);
    const auto highest = std::exchange(m_highest, std::nullopt);
    return highest ? highest : m_last;
}

bool AnnouncedSlots::Holds(SimSlot slot) const {
    std::lock_guard lock(m_mutex);
    return m_slots[static_cast<std::size_t>(slot.Number())].held;
}

void AnnouncedSlots::Clear() {
    std::lock_guard lock(m_mutex);
    m_slots = {};
    m_queue.clear();
}

}  // namespace varkel
