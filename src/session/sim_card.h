// What the modem says of the SIM: its state, its presence, its identity and the module's readiness.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

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

    // Hears of each identity that was stored, on the read thread. Before the first one.
    void SetIdentityWatch(std::function<void(IdQuery)> watch) { m_onIdentity = std::move(watch); }

    // Asks for the IMSI or the IMEI and waits for the answer, at most 2000 ms. Open thread.
    void QueryIdentity(IdQuery which);

  private:
    void OnIdentity(std::string_view text, IdQuery which);

    Session& m_session;
    std::shared_ptr<Event> m_identityReply;
    std::function<void(IdQuery)> m_onIdentity;
};

}  // namespace varkel
