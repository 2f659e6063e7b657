// The one packet-data call that there can be at a time, from dialling to its end, with what the dialling
// program of the unit prints meanwhile and the code with which it exits: lines and codes are those of pppd.
#pragma once

#include <string>
#include <string_view>

#include "simulator/agenda.h"

namespace varkel::sim {

class Modem;

enum class DataPhase { Idle, Dialling, Negotiating, Up };

// What the network does with data calls.
enum class DataMood {
    Normal,
    Deaf,    // puts them through, but nobody answers pings
    Silent,  // lets them wait for ever
    Refuse,  // takes neither user nor password
};

// Needs context 1 of AT+CGDCONT, as the number *99***1# says, a registered module and some signal.
class DataCall {
  public:
    // Both outlive the call.
    DataCall(Modem& modem, Agenda& agenda) : m_modem(modem), m_agenda(agenda) {}

    DataPhase Phase() const { return m_phase; }
    DataMood Mood() const { return m_mood; }
    // A link that is up changes at once between Normal and Deaf: its ends agree on other addresses.
    void SetMood(DataMood mood);

    // The dialling program's side. A call that is left from an earlier one ends.
    void Dial(std::string_view user, Millis now);
    void HangUp();
    // It was killed: nobody is there to be told.
    void Abandon();

    // The network ends the call; false when there is none.
    bool Drop();
    // It ends with the module's power, network or link.
    void Lose(std::string_view why);

  private:
    std::string_view Obstacle() const;
    void Connect(Millis now);
    void Authenticate(Millis now);
    void Establish();
    void PrintAddresses() const;
    void Finish(int code);
    void After(Millis time, Millis now, Agenda::Work work);
    void Print(std::string_view line) const;
    void Say(std::string_view text) const;

    Modem& m_modem;
    Agenda& m_agenda;
    DataPhase m_phase = DataPhase::Idle;
    DataMood m_mood = DataMood::Normal;
    std::string m_user;
};

}  // namespace varkel::sim
