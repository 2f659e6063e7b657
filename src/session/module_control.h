// The open thread: opens the module, shuts it down, and brings it back after its USB link was lost.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>

#include "platform/guarded.h"
#include "session/module_open.h"

namespace varkel {

// Requests come from any thread and are carried out one after the other on the open thread, which suspends
// itself when there is nothing to do.
class ModuleControl {
  public:
    // `afterFailedOpen` runs on the open thread when an open attempt has failed for good.
    ModuleControl(Session& session, const ModuleOpen::Parts& parts, void* owner, ReceiveCallback receive,
                  std::function<void()> afterFailedOpen);
    ~ModuleControl();

    // Creates the open thread; false when the system refuses.
    bool Start();

    // `withData`: a successful open goes on to dial the data link. Of several requests that wait the last one
    // decides.
    void RequestOpen(bool withData = true) {
        m_openWithData = withData;
        Request(Job::Open);
    }
    // Ends an open attempt that is under way, then shuts the module down.
    void RequestClose();
    // Ends an open attempt that is under way; it fails.
    void CancelOpen();
    // Shuts the module down and ends the open thread; `ended` then runs on it.
    void RequestEnd(std::function<void()> ended);

    // A command found the USB link down, or the serial device is gone. Any thread, those of the link
    // included; only posts.
    void OnLinkLost();

    bool Opening() const { return m_opening; }

  private:
    enum class Job { Open, Close, Recover, End };

    void Request(Job job);
    void OpenThread();
    bool Perform(Job job);
    void Recover();
    bool Network_interface_Connect(bool lastAttempt);
    void ArmWaits();
    void Network_interface_Disconnect();
    bool StopRequested();
    void ReleaseSuspend();

    Session& m_session;
    ModuleOpen::Parts m_parts;
    OpenWaits m_waits;
    ModuleOpen m_open;
    std::function<void()> m_afterFailedOpen;
    std::function<void()> m_ended;  // set before Job::End is requested
    const MessageId m_openEndMessage;

    std::shared_ptr<Thread> m_thread;
    Guarded<std::deque<Job>> m_jobs;
    std::atomic<bool> m_openWithData = true;
    std::atomic<bool> m_opening = false;
    std::atomic<bool> m_recovering = false;
    std::atomic<bool> m_linkLost = false;
    std::atomic<bool> m_endRequested = false;
};

}  // namespace varkel
