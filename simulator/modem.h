// The simulated module: takes the program's bytes, carries its commands out, and reports what happens.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/agenda.h"
#include "simulator/command_table.h"
#include "simulator/data_call.h"
#include "simulator/modem_settings.h"
#include "simulator/radio.h"
#include "simulator/sim_card.h"
#include "simulator/voice_call.h"
#include "simulator/wire.h"

namespace varkel::sim {

struct ModemHooks {
    // A line for whoever watches: what was asked and answered, what happened.
    std::function<void(std::string_view)> say;
    // The same of the network and of whoever is at the other end of a call.
    std::function<void(std::string_view)> network;
    // Every command line as it was taken, and every text that was entered behind a prompt.
    std::function<void(std::string_view)> command;
    // A message that went out: its PDU in octets.
    std::function<void(std::string_view, Millis)> sent;
    // As in UnitHooks.
    std::function<void(std::string_view)> dialLine;
    std::function<void(int)> dialEnd;
};

// Echo, command lines and answers after ITU-T V.250. Bytes that come while a command is being carried out
// wait, and so does their echo; unsolicited results wait while a message is being entered.
class Modem {
  public:
    // All of these outlive the modem.
    Modem(ModemConfig& config, SimCard& sim, Agenda& agenda, Wire& wire, ModemHooks& hooks,
          std::uint64_t seed);

    void PowerOn(Millis now);
    void PowerOff(Millis now);
    bool Powered() const { return m_powered; }
    // The module has started far enough to be a USB device.
    bool Booted() const { return m_booted; }
    bool Ready() const { return m_started; }

    void Receive(std::string_view bytes, Millis now);

    // The card was put in or taken out.
    void SimMoved(Millis now);
    // Sends an unsolicited result code, framed as one.
    void Unsolicited(std::string_view text, Millis now);
    // Messages and calls come through: the SIM is ready and the module registered.
    bool Reachable() const { return m_simPhase == SimPhase::Ready && m_radio.Registered(); }
    // A message comes from the network; the slot that took it, nothing when none could.
    std::optional<int> Deliver(std::string_view pdu, Millis now);
    // Called when the module has come into reach, and when a message was deleted.
    std::function<void(Millis)> onMessagesPossible;

    Radio& Network() { return m_radio; }
    VoiceCall& CurrentCall() { return m_call; }
    DataCall& Data() { return m_data; }

    // For the commands.
    ModemConfig& Config() { return m_config; }
    ModemSettings& Settings() { return m_settings; }
    SimCard& Sim() { return m_sim; }
    std::optional<Cme> CardFault(Needs needs) const;
    // Gives the card a code. Right unlocks it, Wrong and Blocked have counted.
    CodeResult EnterCode(std::string_view code, std::string_view newCode, Millis now);
    // Reports the module's state when it is known and was not reported before.
    void ReportStart(Millis now);
    // Reports it once more, behind the answer that is being made.
    void ReportStartAgain(Millis now);
    // Has the network answer a USSD request, or the reply to its question.
    void RequestUssd(Millis now);
    void CancelUssd();
    // The network ends the dialogue.
    void EndUssd(Millis now);
    unsigned char NextMessageReference() { return ++m_messageReference; }
    // Octets of the message that AT+CMGS announced, without the service centre's address.
    std::size_t announcedOctets = 0;
    const ModemHooks& Hooks() const { return m_hooks; }

    static constexpr std::size_t longestLine = 512;
    static constexpr std::size_t longestInput = 8192;  // bytes waiting; more is lost, as in a full buffer
    static constexpr std::size_t mostHeld = 64;        // unsolicited results waiting for the end of an entry

  private:
    enum class SimPhase { Absent, Starting, Locked, Initialising, Ready };
    // What the next byte belongs to.
    enum class Mode { Line, Busy, Entry };

    void Pump(Millis now);
    void TakeLineByte(char byte, Millis now);
    void TakeEntryByte(char byte, Millis now);
    void FinishLine(Millis now);
    void FinishEntry(Millis now);
    // Does `work` after `time`; until then no further byte is looked at.
    void BusyFor(Millis time, Millis now, std::function<void(Millis)> work);
    Outcome Execute(const std::vector<AtCommand>& commands, std::string& answer, Millis now);
    void Conclude(std::string_view asked, std::string answer, const Outcome& outcome, Millis now);
    Millis TimeFor(const std::vector<AtCommand>& commands) const;

    void StartSim(Millis now);
    void LookAtSim(Millis now);
    void OnRegistration(Millis now);
    void ReportUssd(int state, const std::string& text, Millis now);
    void Say(std::string_view text) const;

    ModemConfig& m_config;
    SimCard& m_sim;
    Agenda& m_agenda;
    Wire& m_wire;
    ModemHooks& m_hooks;
    Radio m_radio;

    ModemSettings m_settings;
    VoiceCall m_call;
    DataCall m_data;
    bool m_ussdAsked = false;  // the network waits for a reply
    bool m_powered = false;
    bool m_booted = false;
    bool m_started = false;
    int m_reported = 0;  // the last "+URCIND:" of this start
    SimPhase m_simPhase = SimPhase::Absent;

    Mode m_mode = Mode::Line;
    std::string m_input;  // bytes that nobody has looked at
    std::string m_line;   // the line or the text that is being entered
    Outcome m_entry;      // of the command that asked for it
    bool m_holding = false;
    std::deque<std::string> m_held;
    unsigned char m_messageReference = 0;
};

}  // namespace varkel::sim
