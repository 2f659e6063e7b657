// Stand-ins for the parts that are still to come. Each says in the log what it was asked for and did not do.
#pragma once

#include "platform/log.h"
#include "session/call_control.h"
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

class NoCallControl final : public CallControl {
  public:
    explicit NoCallControl(Log& log) : m_log(log) {}
    void ReloadRecords() override;
    bool Busy() const override { return false; }
    void OnRing() override;
    void OnRingNo(std::string_view text) override;
    void OnCallEstablished() override;
    void OnCallHooked() override;
    void OnUssd(std::string_view text) override;

  private:
    Log& m_log;
};

}  // namespace varkel
