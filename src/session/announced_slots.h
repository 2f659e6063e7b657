// What is known of the messages on the SIM: the slots that the modem has announced and nobody has kept yet,
// and those that were read and are still there.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "modem/at_values.h"

namespace varkel {

// Slots are announced on the read thread and read on the worker; any thread may ask. A slot stands at most
// once in the queue, which is therefore never longer than there are slots.
class AnnouncedSlots {
  public:
    // Puts the slot at the end of the queue. Slots that were given up are tried again after it.
    void Announce(SimSlot slot);
    // The slot to read next; it stays announced until the reading is Done or Failed.
    std::optional<SimSlot> TakeNext();
    // Its message was read: it is kept, or cannot be.
    void Done(SimSlot slot);
    // It was emptied by the clean-up.
    void Deleted(SimSlot slot);
    // Its message could not be read or kept. It is tried again at the end of the queue, `mostAttempts` times
    // in all; then it waits for the next announcement. False when it was given up for now.
    bool Failed(SimSlot slot);
    // Waits for the next announcement at once.
    void GiveUp(SimSlot slot);
    // The highest slot that was announced since this was asked last; when none was, the last one ever.
    std::optional<SimSlot> TakeHighest();

    // A message in it was announced and is not kept: it must not be deleted.
    bool Holds(SimSlot slot) const;
    // A message is known to be in it.
    bool Knows(SimSlot slot) const;
    // It was emptied, and nothing is known to have come since. What comes this moment must not be deleted
    // unread.
    bool Emptied(SimSlot slot) const;
    // How many messages are known to be on the SIM.
    int Known() const;
    // Another SIM or a module that starts anew: nothing is known.
    void Clear();

    static constexpr int mostAttempts = 3;

  private:
    struct State {
        bool held = false;  // announced and not kept
        bool read = false;  // and still there
        bool emptied = false;
        bool queued = false;
        bool givenUp = false;  // held, and waiting for the next announcement
        std::uint8_t attempts = 0;
    };

    State& At(SimSlot slot) { return m_slots[static_cast<std::size_t>(slot.Number())]; }
    void Queue(SimSlot slot);

    mutable std::mutex m_mutex;
    std::array<State, SimSlot::largest + 1> m_slots{};
    std::deque<SimSlot> m_queue;
    std::optional<SimSlot> m_last;
    std::optional<SimSlot> m_highest;  // since it was asked for
};

}  // namespace varkel
