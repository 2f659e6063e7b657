#include "simulator/simulated_unit.h"

#include <algorithm>

namespace varkel::sim {

std::string_view NameOf(Voice voice) {
    constexpr std::string_view names[] = {"modem", "unit", "network"};
    return names[static_cast<std::size_t>(voice)];
}

SimulatedUnit::SimulatedUnit(const UnitConfig& config, std::uint64_t seed)
    : m_config(config.modem),
      m_head(config.head),
      m_sim(config.sim),
      m_wire(seed),
      m_modem(m_config, m_sim, m_agenda, m_wire, m_modemHooks, ~seed),
      m_centre(m_modem, m_agenda, m_config) {
    m_wire.Settings() = config.faults;
    SetHooks({});
}

void SimulatedUnit::SetHooks(UnitHooks hooks) {
    m_hooks = std::move(hooks);
    m_modemHooks = {};
    if (m_hooks.say) m_modemHooks.say = [this](std::string_view text) { m_hooks.say(Voice::Modem, text); };
    if (m_hooks.say)
        m_modemHooks.network = [this](std::string_view text) { m_hooks.say(Voice::Network, text); };
    m_modemHooks.command = m_hooks.command;
    m_modemHooks.sent = [this](std::string_view pdu, Millis now) {
        if (m_hooks.sent) m_hooks.sent(pdu);
        m_centre.OnSent(pdu, now);
    };
    m_modemHooks.dialLine = m_hooks.dialLine;
    m_modemHooks.dialEnd = m_hooks.dialEnd;
    MessageCentreHooks centreHooks;
    if (m_hooks.say) centreHooks.say = [this](std::string_view text) { m_hooks.say(Voice::Network, text); };
    centreHooks.sent = m_hooks.message;
    m_centre.SetHooks(std::move(centreHooks));
}

void SimulatedUnit::HostWrites(std::string_view bytes, Millis now) {
    Advance(now);
    if (UsbUp()) m_modem.Receive(bytes, now);
}

std::string SimulatedUnit::TakeOutput(Millis now) {
    Advance(now);
    return m_wire.Take(now);
}

std::optional<Millis> SimulatedUnit::NextDeadline() const {
    const auto next = m_agenda.Next();
    const auto arrival = m_wire.Next();
    if (!next || !arrival) return next ? next : arrival;
    return std::min(*next, *arrival);
}

void SimulatedUnit::Advance(Millis now) {
    m_agenda.Advance(now);
    if (!UsbUp()) m_wire.Clear();
}

CommandResult SimulatedUnit::Command(std::string_view line, Millis now) {
    Advance(now);
    return RunConsoleCommand(*this, line, now);
}

void SimulatedUnit::SetModulePower(bool on, Millis now) {
    if (on == m_modem.Powered()) return;
    if (on) {
        m_modem.PowerOn(now);
    } else {
        m_modem.PowerOff(now);
    }
    Say(on ? "module powered" : "module off");
}

void SimulatedUnit::CrashModule(Millis now) {
    if (!m_modem.Powered()) return;
    m_modem.PowerOff(now);
    m_modem.PowerOn(now);
    Say("module restarts");
}

void SimulatedUnit::SetVanished(bool vanished) {
    m_vanished = vanished;
    if (vanished) OnLinkLost();
}

void SimulatedUnit::SetUsbDown(bool down) {
    m_usbDown = down;
    if (down) OnLinkLost();
}

// The module hangs up when nobody controls it any more, as with a dropped DTR.
void SimulatedUnit::OnLinkLost() {
    m_wire.Clear();
    constexpr std::string_view noLink = "the module's USB link is gone";
    m_modem.CurrentCall().Lose(noLink);
    m_modem.Data().Lose(noLink);
}

void SimulatedUnit::DialData(std::string_view user, Millis now) {
    Advance(now);
    if (UsbUp()) return m_modem.Data().Dial(user, now);
    constexpr int portNotOpened = 7;  // of pppd's exit codes
    if (m_hooks.dialLine) m_hooks.dialLine("Failed to open the modem: No such file or directory");
    if (m_hooks.dialEnd) m_hooks.dialEnd(portNotOpened);
}

void SimulatedUnit::HangUpData(Millis now) {
    Advance(now);
    m_modem.Data().HangUp();
}

void SimulatedUnit::AbandonData(Millis now) {
    Advance(now);
    m_modem.Data().Abandon();
}

void SimulatedUnit::SetSimInserted(bool inserted, Millis now) {
    if (m_sim.inserted == inserted) return;
    m_sim.inserted = inserted;
    m_modem.SimMoved(now);
}

bool SimulatedUnit::Call(DrvFunction function, int& value, Millis now) {
    Advance(now);
    const DrvEntry& entry = drvTable[static_cast<std::size_t>(function)];
    if (m_head.Failing(function)) return false;
    switch (entry.kind) {
        case DrvKind::Get: return Get(function, value);
        case DrvKind::Set: Set(function, value, now); return true;
        case DrvKind::Action: Act(function, now); return true;
    }
    return false;
}

bool SimulatedUnit::Get(DrvFunction function, int& value) const {
    switch (function) {
        case DrvFunction::Get3GPower: value = m_modem.Powered(); return true;
        case DrvFunction::Get3GSimStatus: value = m_sim.inserted; return true;
        case DrvFunction::GetUsbHostStatus: value = UsbUp(); return true;
        case DrvFunction::GetSDCardStatus: value = m_head.cardInserted; return true;
        case DrvFunction::GetCurrentPowerValue: value = m_head.supplyValue; return true;
        case DrvFunction::GetGprsHpSpkStatus: value = m_head.speaker; return true;
        case DrvFunction::GetMainHandle:
            if (m_head.mainWindow != 0) value = m_head.mainWindow;
            return m_head.mainWindow != 0;
        default: return false;
    }
}

void SimulatedUnit::Set(DrvFunction function, int value, Millis now) {
    if (function == DrvFunction::Set3GPower) {
        SetModulePower(value != 0, now);
        return;
    }
    const auto note = [this](int& place, int to, std::string_view name) {
        if (place != to) Say(std::string(name) + " " + std::to_string(to));
        place = to;
    };
    switch (function) {
        case DrvFunction::SetTmcPower: note(m_head.tmcPower, value, "TMC power"); break;
        case DrvFunction::SetAudioTo3G: note(m_head.audioTo3G, value, "audio to the module:"); break;
        case DrvFunction::SendGprs3gHandfreeMsgToAudio: note(m_head.handsFree, value, "hands-free:"); break;
        case DrvFunction::SetGprsHpSpkStatus: note(m_head.speaker, value, "speaker:"); break;
        default: break;
    }
}

void SimulatedUnit::Act(DrvFunction function, Millis now) {
    // Programs release them at the end of every call, whether or not it was established.
    const auto release = [](int& locks) { locks = std::max(locks - 1, 0); };
    switch (function) {
        case DrvFunction::RequireDisableKeySuspend: ++m_head.keySuspendLocks; break;
        case DrvFunction::RequireDisableAutoSuspend: ++m_head.autoSuspendLocks; break;
        case DrvFunction::ReleaseDisableKeySuspend: release(m_head.keySuspendLocks); break;
        case DrvFunction::ReleaseDisableAutoSuspend: release(m_head.autoSuspendLocks); break;
        case DrvFunction::RestartMachine:
            Say("unit restarts");
            SetModulePower(false, now);
            m_head.tmcPower = m_head.audioTo3G = m_head.handsFree = m_head.speaker = 0;
            m_head.keySuspendLocks = m_head.autoSuspendLocks = 0;
            if (m_hooks.restart) m_hooks.restart();
            break;
        default: break;
    }
}

void SimulatedUnit::Say(std::string_view text) const {
    if (m_hooks.say) m_hooks.say(Voice::Unit, text);
}

}  // namespace varkel::sim
