// The open sequence: from an unpowered module to one that is registered, initialised and watched.
#pragma once

#include "modem/serial_link.h"
#include "session/call_control.h"
#include "session/data_link.h"
#include "session/message_handling.h"
#include "session/modem_profile.h"
#include "session/open_waits.h"
#include "session/session.h"
#include "session/signal_watch.h"
#include "session/sim_card.h"
#include "session/sim_phonebook.h"
#include "session/sim_unlock.h"

namespace varkel {

// Runs on the open thread. Each step returns false when the sequence has failed, and has then told the user
// why.
class ModuleOpen {
  public:
    struct Parts {
        CCESeries& link;
        SimCard& sim;
        SignalWatch& signal;
        SimPhonebook& phonebook;
        CallControl& calls;
        DataLink& data;
        MessageHandling& messages;
    };

    // `owner` and `receive` are what the link hands its chunks to.
    ModuleOpen(Session& session, const Parts& parts, OpenWaits& waits, void* owner, ReceiveCallback receive);

    // True when the module is open.
    bool Run();

  private:
    void Begin();
    bool FindSim();
    bool PowerOn();
    bool OpenLink();
    bool Initial3GCom();
    bool Meet();
    bool Greet();
    bool AwaitModule();
    bool Indicated();
    bool SaysTheSimsState();
    bool SearchNetwork();
    bool Initialise();
    bool RunSteps(std::span<const InitStep> steps);
    bool ChooseAccessPoint();
    bool DialData();
    void Finish();

    bool UsbLinkPresent();
    bool Registered();
    // Logs the reason and shows the warning unless opening is silent; always false.
    bool Fail(const char* logLine, WarnCode code);

    Session& m_session;
    Parts m_parts;
    OpenWaits& m_waits;
    SimUnlock m_simUnlock;
    void* m_owner;
    ReceiveCallback m_receive;
};

}  // namespace varkel
