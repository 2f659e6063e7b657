// The packet-data link, as the rest of the session uses it.
#pragma once

namespace varkel {

class DataConnection {
  public:
    virtual ~DataConnection() = default;

    // Loads the operators' list and chooses the access point for the SIM's IMSI; false when none matches.
    // Open thread.
    virtual bool GetApn() = 0;
    // Dials. Takes seconds; on a worker or the open thread.
    virtual void OpenNet() = 0;
    // Hangs up. Takes seconds; on a worker or the open thread.
    virtual void RasHangUp() = 0;
    // Three signal polls in a row were poor: tells the listeners and hangs up. Takes seconds; on a worker.
    virtual void OnPoorSignal() = 0;
};

}  // namespace varkel
