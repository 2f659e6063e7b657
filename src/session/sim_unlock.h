// From a module that has spoken up to a SIM that is open: asks for PIN, PUK and personalisation codes as
// needed.
#pragma once

#include "session/open_waits.h"
#include "session/session.h"

namespace varkel {

// Runs on the open thread. Every code that is sent was typed by the user for this one time.
class SimUnlock {
  public:
    SimUnlock(Session& session, OpenWaits& waits) : m_session(session), m_waits(waits) {}

    // False when the sequence has failed; the user then knows why.
    bool Run();

  private:
    bool QuerySuspectSim();
    bool EnterPin(SimState asked);
    bool EnterPuk(SimState asked);
    void QuerySim();
    bool Fail(const char* logLine, WarnCode code);

    Session& m_session;
    OpenWaits& m_waits;
};

}  // namespace varkel
