// What the modem says of the SIM: its state, its presence, its identity and the module's readiness.
#pragma once

#include <memory>
#include <string_view>

#include "session/session.h"

namespace varkel {

class SimCard {
  public:
    explicit SimCard(Session& session);

    // Read thread: the answers and indications with the text from their keyword on.
    void OnCpin(std::string_view text);
    void OnUrcInd(std::string_view text);
    void OnSimInserted(std::string_view text);
    void OnNoSim();
    void OnCimi(std::string_view text);
    void OnGsn(std::string_view text);

    // Asks for the IMSI or the IMEI and waits for the answer, at most 2000 ms. Open thread.
    void QueryIdentity(IdQuery which);

  private:
    void OnIdentity(std::string_view text, IdQuery which);

    Session& m_session;
    std::shared_ptr<Event> m_identityReply;
};

}  // namespace varkel
