// The packet-data link: the operator that it goes through, dialling, hanging up, and what is done when it
// fails.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "modem/at_values.h"
#include "platform/guarded.h"
#include "session/command_turn.h"
#include "session/link_test.h"
#include "session/listeners.h"
#include "session/open_waits.h"
#include "session/ras_connection.h"
#include "session/session.h"
#include "session/worker.h"
#include "stores/isp_list.h"

namespace varkel {

// Everything that takes time is a job of one worker, so that the link is never dialled and hung up at the
// same time.
class DataLink {
  public:
    DataLink(Session& session, CommandTurn& turn, Listeners& listeners);
    ~DataLink();

    // Takes up the operator that was used last. Dialog thread.
    void Start();

    // The open thread's.
    // Chooses the first operator of the list that serves the SIM's IMSI; false when none does.
    bool GetApn();
    // Dials; returns when that is under way, at the latest when `opening` is cancelled.
    void OpenNet(OpenWaits& opening);
    // Ends whatever is under way and hangs up; takes seconds.
    void ShutDown();

    // Any thread; each returns at once.
    // Dials or hangs up for the user. Of several wishes that wait the last one counts.
    void OpenNet() { Ask(Wish::Dial); }
    void RasHangUp() { Ask(Wish::HangUp); }
    // Three signal polls in a row were poor: tells the listeners and hangs up.
    void OnPoorSignal();
    // After that the signal is good again: dials, and begins to count anew.
    void OnGoodSignal();
    // Hands the result of a link test to `answer`, on the worker. Whoever asks while a test runs gets the
    // result of that. False when too many wait for it.
    using Answer = std::function<void(LinkResult)>;
    bool PingTest(Answer answer);
    // The result goes to all listeners, once, however often this is asked for while they wait for it.
    void OnForceCheckGprs();
    // There is a connection, be it dialled or established.
    bool Exists() const { return m_connection.Handle() != RasHandle::None; }
    bool Dialling() const { return m_session.state.m_dataState == DataState::Dialling; }
    bool Connected() const { return m_session.state.m_dataState == DataState::Connected; }

    // The operator in use, and its list.
    ISP_Struct CurrentIsp() const { return g_ISPStruct.Get(); }
    // Uses it from the next dial on, and keeps it; false, and a message box says so, when it cannot be kept.
    bool SetISPToReg(const ISP_Struct& isp);
    IspList& Operators() { return m_operators; }

    static constexpr std::size_t mostWaiting = 65'536;  // answers of a link test

  private:
    enum class Wish { None, Dial, HangUp };

    void Ask(Wish wish);
    std::shared_ptr<Event> PostWithEnd(std::function<void()> job);

    // The worker's jobs.
    void Dial();
    bool SetApn(const ISP_Struct& isp);
    RasDialParams ParamsOf(const ISP_Struct& isp) const;
    void HangUp();
    void OnEnd(DialNumber number, RasConnection::End end);
    void AnswerAll();

    bool UsbLinkPresent();
    void ShowStatus(const char* key);
    void ClearStatus();

    Session& m_session;
    CommandTurn& m_turn;
    Listeners& m_listeners;
    IspList m_operators;
    Guarded<ISP_Struct> g_ISPStruct;
    OpenWaits m_waits;  // of the worker's jobs; cancelled when the module is shut down
    RasConnection m_connection;
    LinkTest m_test;
    std::atomic<Wish> m_wish = Wish::None;
    std::atomic<bool> m_checkAsked = false;  // all listeners wait for the result of a test
    Guarded<std::vector<Answer>> m_answers;
    Worker m_worker;  // last: its thread ends first
};

}  // namespace varkel
