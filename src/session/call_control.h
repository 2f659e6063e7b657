// Calls: what the modem reports of them, what the user does with them, and what the unit must know.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/guarded.h"
#include "session/command_turn.h"
#include "session/phone_book.h"
#include "session/session.h"
#include "session/signal_watch.h"
#include "session/value_table.h"
#include "session/worker.h"
#include "stores/call_list.h"

namespace varkel {

// What is known of the call that rings, is dialled or is up.
struct Call {
    bool m_bOutgoingCall = false;  // dialled; until it is established or has ended
    bool m_bRedialCall = false;    // the same, by redial
    bool m_bRinging = false;       // from the first RING to the end
    bool m_bClipArmed = true;      // the next caller's number is the one of this call
    bool established = false;
    std::string m_strCallNumber;  // the caller's, as reported
    std::string m_strCallName;    // the other party: what the phonebooks have for it, or the number

    bool Outgoing() const { return m_bOutgoingCall || m_bRedialCall; }
    bool Any() const { return Outgoing() || m_bRinging || established; }
};

// A modem's event changes the state of the call at once and under its lock; what follows from it, audio,
// suspend locks, records, values, is done by a worker in the order of the events, each with the call as it
// was then. So neither a slow driver nor the flash keeps the next RING waiting, and no call ends with another
// one's number.
class CallControl {
  public:
    CallControl(Session& session, CommandTurn& turn, SignalWatch& signal, PhoneBook& book, CallLists& lists);
    ~CallControl();

    // No call is up at the start, whatever an earlier run has left in the registry. Dialog thread.
    void Start();

    // Read thread; quick.
    void OnRing(std::string_view text);
    void OnRingNo(std::string_view text);
    void OnUssd(std::string_view text);
    // A service code was refused.
    void OnServiceCodeFailed();
    // Any thread.
    void OnCallEstablished();
    void OnCallHooked();
    // The port is closed: what was up has ended. Waits until audio and locks are given back, at most 5 s.
    void OnModuleClosed();
    // A call rings, is dialled or is established.
    bool Busy() const {
        return m_call.With([](const Call& call) { return call.Any(); });
    }

    // One is dialled, and not answered yet.
    bool Dialling() const {
        return m_call.With([](const Call& call) { return call.Outgoing() && !call.established; });
    }
    // Who is at the other end, by name if it is known; empty without a call.
    std::string OtherParty() const {
        return m_call.With([](const Call& call) { return call.m_strCallName; });
    }

    // The number that was reported of the caller; empty without one.
    std::string CallerNumber() const {
        return m_call.With([](const Call& call) { return call.m_strCallNumber; });
    }

    // What the user does. Each returns at once; a warning says what is wrong. Any thread but the read thread.
    // Dials and writes the number into the list of dialled calls. False when nothing is dialled.
    bool Dial(std::string_view number);
    // Dials the number that was dialled last, at most once a second.
    void OnRedial();
    // Dials the number of a record, and writes it into the list of dialled calls under the record's name.
    bool CallBack(const CallRecord& record);
    // Dials without a record.
    bool Redial(std::string_view number);
    void Answer();
    void Reject();
    // Ends the call that is up, or gives up the one that is dialled.
    void HangUp();
    // One of 0-9 * # + A-D, to the other party of the call that is up.
    void SendTone(std::string_view key);
    void ToggleSpeaker();
    // Sends the reply to what the network has asked; false when it is none that can be sent.
    bool AnswerUssd(std::string_view reply);
    // Ends the dialogue with the network, if there is one.
    void LeaveUssd();
    // The network has not answered yet; Repaint is called when that changes.
    bool AwaitsUssd() const { return m_dialogue == Dialogue::Awaited; }

    CallLists& Lists() { return m_lists; }
    // The record in row `row` of the list `shown`, or all that were shown, leave their file; `done` runs on
    // the dialog thread. Any thread.
    using RecordsDone = std::function<void(StoreResult)>;
    void DeleteRecord(CallKind kind, CallList::List shown, std::size_t row, RecordsDone done);
    void DeleteRecords(CallKind kind, CallList::List shown, RecordsDone done);
    // Missed calls that came since somebody looked at their list; kept over a restart.
    int NewMissed() const { return m_newMissed; }
    void ForgetNewMissed();

  private:
    // With the network, by service codes.
    enum class Dialogue { None, Awaited, ReplyExpected };
    enum class Guard : int { CALL_READY = 0, Establishing = 1, Ending = 2 };

    // The worker's jobs.
    void Established(const Call& call);
    void Ended(const Call& call);
    void Publish(const Call& ended);
    CallRecord RecordOf(std::string_view number, std::string_view name) const;
    // True when it stands in the list.
    bool Append(CallList& list, const CallRecord& record);
    void CountMissed();
    void ChangeRecords(std::function<StoreResult()> change, RecordsDone done);
    // What is appended to the dialled calls, made when the number has been sent; null for no record.
    using MakeDialled = std::function<CallRecord()>;
    void SendDial(const DialString& number, const MakeDialled& record);
    template <class SetOneShot, class Send>
    void Request(SetOneShot setOneShot, Send send);

    // Begins or ends a call: the other parts of the session see that there is one.
    template <class Change>
    auto ChangeCall(Change change) {
        return m_call.With([&](Call& call) {
            auto result = change(call);
            m_session.state.m_bCallActive = call.Any();
            return result;
        });
    }
    bool MayDial(std::string_view number, DialString& dialled);
    bool BeginDial(std::string_view number, bool Call::*how);
    bool Place(std::string_view number, bool Call::*how, MakeDialled record);
    bool EnoughPower();
    void WatchRing();
    void WatchLink();
    void ShowCaller(const Call& call);
    void EndServiceCode();
    void SendReply(const UssdString& reply);
    void CancelUssd();
    void RestartPoll();

    Session& m_session;
    CommandTurn& m_turn;
    SignalWatch& m_signal;
    PhoneBook& m_book;
    CallLists& m_lists;

    mutable Guarded<Call> m_call;
    Guarded<std::string> m_ShowNumStr;  // the number to redial
    std::atomic<Guard> nCallStatus = Guard::CALL_READY;
    std::atomic<Dialogue> m_dialogue = Dialogue::None;
    std::atomic<int> m_newMissed = 0;
    std::atomic<bool> m_bUserHangUp = false;
    Guarded<Ticks> m_dwLastRedial;
    std::atomic<bool> m_redialled = false;  // m_dwLastRedial means something
    ValueTable m_values;                    // the worker's, after Start
    Worker m_worker;                        // last: its thread ends first
};

}  // namespace varkel
