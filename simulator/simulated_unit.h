// A whole unit without hardware: module, SIM, network, driver library. Deterministic: time comes in with
// every call, chance from the seed; no thread, clock, file or descriptor.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/agenda.h"
#include "simulator/console.h"
#include "simulator/head_unit.h"
#include "simulator/message_centre.h"
#include "simulator/modem.h"
#include "simulator/sim_card.h"
#include "simulator/wire.h"

namespace varkel::sim {

struct UnitConfig {
    ModemConfig modem;
    SimConfig sim;
    HeadUnit head;
    Faults faults;
};

// Whose line it is: "modem: AT+CSQ -> +CSQ: 18,99 | OK", "unit: module powered" or "network: message to ...".
enum class Voice { Modem, Unit, Network };
std::string_view NameOf(Voice voice);

struct UnitHooks {
    std::function<void(Voice, std::string_view)> say;
    // Every command line, or text behind a prompt, that the modem took.
    std::function<void(std::string_view)> command;
    // The PDU of a message that the modem sent, in octets; and what it says.
    std::function<void(std::string_view)> sent;
    std::function<void(const SubmittedMessage&)> message;
    // What the dialling program prints, and the code with which it is to exit then.
    std::function<void(std::string_view)> dialLine;
    std::function<void(int)> dialEnd;
    // RestartMachine was called: the module is off already, the programs of the unit are to start anew.
    std::function<void()> restart;
};

// One caller at a time; the hooks run inside the calls and must not call back. Time never goes backwards.
class SimulatedUnit {
  public:
    SimulatedUnit(const UnitConfig& config, std::uint64_t seed);
    SimulatedUnit(const SimulatedUnit&) = delete;
    SimulatedUnit& operator=(const SimulatedUnit&) = delete;

    void SetHooks(UnitHooks hooks);

    // The serial line. What is written while it is not there is lost.
    bool LinePresent() const { return m_modem.Booted() && !m_vanished; }
    void HostWrites(std::string_view bytes, Millis now);
    // The next piece that the modem sends; empty when there is none by now. Ask until then: with the fault
    // "split" the pieces of one answer come one by one.
    std::string TakeOutput(Millis now);

    // When something happens, or arrives, without anybody's doing.
    std::optional<Millis> NextDeadline() const;
    // Lets everything happen up to now. The other calls do so first.
    void Advance(Millis now);

    // A function of the driver library. `value` is as in KovexDrvApi::Call.
    bool Call(DrvFunction function, int& value, Millis now);

    // The dialling program was started; both are for a program that has not been ended since.
    void DialData(std::string_view user, Millis now);
    void HangUpData(Millis now);
    // It has vanished without a word.
    void AbandonData(Millis now);

    // One line of the console or a scenario.
    CommandResult Command(std::string_view line, Millis now);

    // The parts, for commands and tests.
    Modem& GetModem() { return m_modem; }
    SimCard& Sim() { return m_sim; }
    HeadUnit& Head() { return m_head; }
    Wire& Line() { return m_wire; }
    MessageCentre& Messages() { return m_centre; }
    ModemConfig& Config() { return m_config; }

    void SetModulePower(bool on, Millis now);
    // The module starts anew by itself, as after a crash: its device is gone until it has booted.
    void CrashModule(Millis now);
    // The device vanishes from the USB bus, or comes back; the module goes on meanwhile.
    void SetVanished(bool vanished);
    // Only the link fails: the device stays, GetUsbHostStatus says no, bytes are lost.
    void SetUsbDown(bool down);
    void SetSimInserted(bool inserted, Millis now);
    bool UsbUp() const { return LinePresent() && !m_usbDown; }
    bool UsbDown() const { return m_usbDown; }
    bool Vanished() const { return m_vanished; }
    void Say(std::string_view text) const;

  private:
    bool Get(DrvFunction function, int& value) const;
    void Set(DrvFunction function, int value, Millis now);
    void Act(DrvFunction function, Millis now);
    void OnLinkLost();

    ModemConfig m_config;
    HeadUnit m_head;
    SimCard m_sim;
    Agenda m_agenda;
    Wire m_wire;
    UnitHooks m_hooks;
    ModemHooks m_modemHooks;
    Modem m_modem;
    MessageCentre m_centre;
    bool m_vanished = false;
    bool m_usbDown = false;
};

}  // namespace varkel::sim
