// Received messages: from the announcement of a SIM slot to the record in the inbox, the news of it, and the
// tidy SIM.
#pragma once

#include <atomic>
#include <bitset>
#include <memory>
#include <string_view>

#include "modem/at_values.h"
#include "platform/fixed_text.h"
#include "platform/guarded.h"
#include "session/announced_slots.h"
#include "session/call_control.h"
#include "session/command_turn.h"
#include "session/session.h"
#include "session/worker.h"
#include "stores/message_box.h"

namespace varkel {

// The timed steps run on the worker, in turns: every read first, because only a message that is kept is safe;
// then a look for messages that nobody has announced; then the announcements, one message after the other;
// then the clean-up, once for all of them. While the SIM is nearly full, the clean-up does not wait for the
// announcements: the network would keep what has no room.
class MessageReceiving {
  public:
    MessageReceiving(Session& session, CommandTurn& turn, CallControl& calls, MessageBox& inbox,
                     Worker& worker);

    // The event that a program for which the controller works waits for. Before the first message.
    void SetReceivedEvent(std::shared_ptr<Event> received) { m_received = std::move(received); }

    // "+CMTI:"; true when there is something to read. Read thread.
    bool OnMsComeIn(std::string_view text);
    // "+CMGR:". Read thread.
    void OnMsContent(std::string_view text);
    // "+CPMS:"; true when the SIM may hold messages that nobody has announced. Read thread.
    bool OnCpms(std::string_view text);
    // What is known of this SIM is void. Any thread.
    void OnModuleClosed();

    // The worker's turns; each does at most one step and returns false when there was none to do now.
    bool ReadNext();
    // Looks for messages that came while nobody listened: before the module was open, or over a line that was
    // down. What is deleted later was read before.
    bool LookNext();
    bool AnnounceNext();
    bool CleanNext();
    // A step is waiting for its time.
    bool Waiting() const { return m_toAnnounce > 0 || m_step != Step::Idle || m_cleaning; }

    // Announcements that wait; what arrives beyond that is kept and counted without one of its own.
    static constexpr int mostAnnouncements = 20;

  private:
    // Of the announcement that is under way.
    enum class Step { Idle, Called, Played };
    enum class Reading { Kept, NotKept, Undecodable, Empty, NoAnswer };
    enum class Which { Any, Unread };
    // When a step was put off, and for how long.
    struct PauseBefore {
        Ticks start = 0;
        Ticks length = 0;

        void Start(Runtime& runtime, Ticks pause) { *this = {runtime.GetTickCount(), pause}; }
        bool Over(Runtime& runtime) const { return TicksSince(runtime.GetTickCount(), start) >= length; }
    };

    // Of other messages than `which` nothing is kept; they count as kept.
    Reading Read(SimSlot slot, Which which);
    Reading AwaitContent(Ticks start, FixedText<1024>& answer);
    Reading Keep(SimSlot slot, std::string_view answer);
    template <class Send>
    bool Quietly(Send send, Ticks pause);
    void FinishAnnouncement();
    void StartCleaning();
    bool NearlyFull() const { return m_simTotal > 0 && m_simUsed * 4 >= m_simTotal * 3; }

    Session& m_session;
    CommandTurn& m_turn;
    CallControl& m_calls;
    MessageBox& m_inbox;
    Worker& m_worker;
    std::shared_ptr<Event> m_received;

    AnnouncedSlots m_slots;
    std::atomic<bool> m_readPending = false;
    std::atomic<int> m_simUsed = 0;   // messages on the SIM, as it was last told
    std::atomic<int> m_simTotal = 0;  // its slots
    Guarded<FixedText<1024>> m_answer;

    // The worker's alone.
    using SlotSet = std::bitset<SimSlot::largest + 1>;
    SlotSet m_unkept;           // asked for, so that the module takes them for read, and not in the inbox
    SlotSet m_announcedUnkept;  // of these, the ones that were announced to the unit
    int m_lookNext = 0;
    int m_toAnnounce = 0;
    Step m_step = Step::Idle;
    PauseBefore m_announcePause;
    bool m_cleaning = false;
    bool m_cleanAgain = false;  // from the first slot, when this clean-up is over
    int m_cleanNext = 0;
    int m_cleanEnd = 0;  // the slot that stays
    PauseBefore m_cleanPause;
};

}  // namespace varkel
