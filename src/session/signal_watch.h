// The signal: the answers to "AT+CSQ", the icon, the poll every 10 s and what follows from a weak signal.
#pragma once

#include <atomic>
#include <string_view>

#include "session/command_turn.h"
#include "session/data_link.h"
#include "session/session.h"

namespace varkel {

// The value of a signal text: the number that it begins with, 0 without one.
int SignalValue(std::string_view csq);
// The icon's level, 0..5.
int IconLevel(int value);
// The level that is broadcast, 1..4.
int BroadcastLevel(int value);

class SignalWatch {
  public:
    SignalWatch(Session& session, CommandTurn& turn, DataLink& data);

    // The answer "+CSQ: rssi,ber". Read thread.
    void OnSignalStatus(std::string_view text);

    // Starts polling, with a first query at once. Any thread.
    void Start();
    void Stop();
    // Forgets the value and shows level 0, when the module is shut down.
    void Clear();

  private:
    void OnTimer();
    void OnRepeatTimer();
    void Ask();
    bool Fresh() const;
    void StepLevel();
    void CountWeak();
    void CountGood();

    Session& m_session;
    CommandTurn& m_turn;
    DataLink& m_data;
    const MessageId m_signalMessage;
    std::atomic<bool> m_awaitingAnswer = false;
};

}  // namespace varkel
