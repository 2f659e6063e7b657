// The one voice call that there can be at a time, and what somebody at its other end does.
#pragma once

#include <string>
#include <string_view>

#include "simulator/agenda.h"

namespace varkel::sim {

class Modem;

enum class CallPhase { Idle, Incoming, Dialling, Active };

// A dialled number rings at the far end until that does something; only then does ATD get its final result.
class VoiceCall {
  public:
    // Both outlive the call.
    VoiceCall(Modem& modem, Agenda& agenda) : m_modem(modem), m_agenda(agenda) {}

    CallPhase Phase() const { return m_phase; }
    bool Outgoing() const { return m_outgoing; }
    const std::string& Number() const { return m_number; }

    // The module's side. What does not fit the phase does nothing and is false.
    bool Dial(std::string_view number, Millis now);
    bool Answer();
    // A call that is only dialled ends with NO CARRIER, as an abandoned ATD does (ITU-T V.250, 5.6.1).
    bool HangUp(Millis now);
    bool SendTone(char tone);

    // Somebody calls the module; without a number it is a hidden caller. One who finds it engaged or out of
    // reach hears so, and the module nothing.
    void Ring(std::string_view number, Millis now);
    // The far end of a dialled call takes it.
    bool FarEndAnswers(Millis now);
    // A dialled call comes to nothing; the module says `result`.
    bool FarEndFails(std::string_view result, Millis now);
    // The far end gives up or hangs up.
    bool FarEndHangsUp(Millis now);

    // The call ends with the module's power, network or link; the far end is released.
    bool Lose(std::string_view why);

    static constexpr Millis ringPeriod = 3'000;
    static constexpr Millis patience = 60'000;         // of a caller whom nobody answers
    static constexpr Millis longestDialling = 30'000;  // then the network says NO ANSWER
    static constexpr Millis callBackAfter = 5'000;

  private:
    std::string FarEnd() const;
    void Begin(CallPhase phase, std::string_view number);
    void End();
    void After(Millis time, Millis now, Agenda::Work work);
    void RingAgain(Millis since, Millis now);
    // Takes the call, hangs up and calls back.
    void PlanCallBack(Millis now);
    void Say(std::string_view text) const;

    Modem& m_modem;
    Agenda& m_agenda;
    CallPhase m_phase = CallPhase::Idle;
    bool m_outgoing = false;
    std::string m_number;
};

}  // namespace varkel::sim
