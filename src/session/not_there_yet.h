// Stand-ins for the parts that are still to come. Each says in the log what it was asked for and did not do.
#pragma once

#include "platform/log.h"
#include "session/data_connection.h"
#include "session/session_state.h"

namespace varkel {

class NoDataConnection final : public DataConnection {
  public:
    explicit NoDataConnection(Log& log) : m_log(log) {}
    // True: the module is of use without a data link.
    bool GetApn() override;
    void OpenNet() override;
    void RasHangUp() override;
    void OnPoorSignal() override;

  private:
    Log& m_log;
};

}  // namespace varkel
