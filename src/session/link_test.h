// The test of the data link: does a host answer, and if none does, why.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "session/command_turn.h"
#include "session/link_result.h"
#include "session/open_waits.h"
#include "session/ras_connection.h"
#include "session/session.h"

namespace varkel {

// One thread, the one that dials. A test takes up to 3 s for each host and 3 s for the diagnosis; when
// `waits` are cancelled it ends soon, and what it then finds is of no value.
class LinkTest {
  public:
    // `hangUp` ends a connection over which three tests in a row have found nobody.
    LinkTest(Session& session, CommandTurn& turn, const RasConnection& connection, OpenWaits& waits,
             std::function<void()> hangUp);

    LinkResult PingTest();

  private:
    bool AnyHostAnswers();
    bool Ping(std::string_view address);
    std::vector<std::string> Addresses() const;
    LinkReason Diagnose(int failures);
    // False when the modem does not answer.
    bool AskModem(int& strength);
    LinkReason ReasonOfSilence();

    Session& m_session;
    CommandTurn& m_turn;
    const RasConnection& m_connection;
    OpenWaits& m_waits;
    std::function<void()> m_hangUp;
    int m_failures = 0;       // in a row
    DialNumber m_tested = 0;  // the connection that they belong to
};

}  // namespace varkel
