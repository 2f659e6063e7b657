#include "simulator/modem.h"

#include "platform/text.h"

namespace varkel::sim {

ModemSettings FactorySettings(ModemKind kind) {
    ModemSettings settings;
    if (kind == ModemKind::Standard) settings.errors = settings.simReports = 0;
    return settings;
}

Modem::Modem(ModemConfig& config, SimCard& sim, Agenda& agenda, Wire& wire, ModemHooks& hooks,
             std::uint64_t seed)
    : m_config(config),
      m_sim(sim),
      m_agenda(agenda),
      m_wire(wire),
      m_hooks(hooks),
      m_radio(agenda, seed, config.signal),
      m_call(*this, agenda),
      m_data(*this, agenda) {
    m_radio.onRegistration = [this](Millis now) { OnRegistration(now); };
}

void Modem::PowerOn(Millis now) {
    if (m_powered) return;
    m_powered = true;
    m_settings = FactorySettings(m_config.kind);
    m_reported = 0;
    StartSim(now);
    m_agenda.At(now + m_config.times.boot, Topic::Start, [this](Millis then) {
        m_booted = true;
        Say("USB link is up");
        m_agenda.At(then + m_config.times.ready, Topic::Start, [this](Millis later) {
            m_started = true;
            ReportStart(later);
        });
    });
}

void Modem::PowerOff(Millis now) {
    if (!m_powered) return;
    m_powered = m_booted = m_started = false;
    m_agenda.Drop(Topic::Start);
    m_agenda.Drop(Topic::Sim);
    m_agenda.Drop(Topic::Reply);
    CancelUssd();
    m_call.Lose("the module is off");
    m_data.Lose("the module is off");
    m_radio.Stop(now);
    m_simPhase = SimPhase::Absent;
    m_mode = Mode::Line;
    m_input.clear();
    m_line.clear();
    m_holding = false;
    m_held.clear();
    m_wire.Clear();
}

void Modem::SimMoved(Millis now) {
    if (!m_powered) return;
    StartSim(now);
    if (m_settings.simReports) Unsolicited(m_sim.inserted ? "+CSMINS: 1,1" : "+CSMINS: 1,0", now);
}

void Modem::StartSim(Millis now) {
    m_agenda.Drop(Topic::Sim);
    m_radio.Stop(now);
    m_simPhase = m_sim.inserted ? SimPhase::Starting : SimPhase::Absent;
    if (!m_sim.inserted) {
        ReportStart(now);
        return;
    }
    m_sim.Reset();
    m_agenda.At(now + m_config.times.simStart, Topic::Sim, [this](Millis then) { LookAtSim(then); });
}

// After the card's start, and after every code.
void Modem::LookAtSim(Millis now) {
    if (m_sim.Asks() != SimAsks::Nothing) {
        m_simPhase = SimPhase::Locked;
        ReportStart(now);
        return;
    }
    m_simPhase = SimPhase::Initialising;
    m_agenda.At(now + m_config.times.simInit, Topic::Sim, [this](Millis then) {
        m_simPhase = SimPhase::Ready;
        ReportStart(then);
        m_radio.Start(m_config.times.registration, then);
    });
}

CodeResult Modem::EnterCode(std::string_view code, std::string_view newCode, Millis now) {
    const CodeResult result = m_sim.Enter(code, newCode);
    if (result == CodeResult::Right && m_simPhase == SimPhase::Locked) LookAtSim(now);
    return result;
}

std::optional<Cme> Modem::CardFault(Needs needs) const {
    if (needs == Needs::Nothing) return std::nullopt;
    if (m_simPhase == SimPhase::Absent) return Cme::SimNotInserted;
    if (m_simPhase == SimPhase::Starting) return Cme::SimBusy;
    if (needs == Needs::Card) return std::nullopt;
    switch (m_sim.Asks()) {
        case SimAsks::Nothing: break;
        case SimAsks::Pin: return Cme::SimPinRequired;
        case SimAsks::Puk: return Cme::SimPukRequired;
        case SimAsks::Pin2: return Cme::SimPin2Required;
        case SimAsks::Puk2: return Cme::SimPuk2Required;
        case SimAsks::PhSim: return Cme::PhSimPinRequired;
        case SimAsks::PhNet: return Cme::NetworkPinRequired;
        case SimAsks::Dead: return Cme::SimFailure;
    }
    if (needs == Needs::ReadyCard && m_simPhase != SimPhase::Ready) return Cme::SimBusy;
    return std::nullopt;
}

void Modem::ReportStart(Millis now) {
    if (!m_started || !m_settings.startIndications) return;
    constexpr int ready = 5;
    constexpr int noSim = 3;
    int state = 0;
    switch (m_config.indication) {
        case StartIndication::Honest: {
            const bool without = m_simPhase == SimPhase::Absent || m_simPhase == SimPhase::Locked;
            state = m_simPhase == SimPhase::Ready ? ready : without ? noSim : 0;
            break;
        }
        case StartIndication::ReadyAlthoughLocked: state = ready; break;
        case StartIndication::ThreeAlthoughReady: state = noSim; break;
        case StartIndication::Never: break;
    }
    if (state == 0 || state == m_reported) return;
    m_reported = state;
    Unsolicited("+URCIND:" + std::to_string(state), now);
}

void Modem::ReportStartAgain(Millis now) {
    m_reported = 0;
    m_agenda.At(now, Topic::Start, [this](Millis then) { ReportStart(then); });
}

void Modem::Unsolicited(std::string_view text, Millis now) {
    if (!m_booted) return;
    if (m_holding) {
        if (m_held.size() < mostHeld) m_held.emplace_back(text);
        return;
    }
    m_wire.Send("\r\n" + std::string(text) + "\r\n", Burst::Answer, now);
    Say(text);
}

std::optional<int> Modem::Deliver(std::string_view pdu, Millis now) {
    if (!Reachable()) return std::nullopt;
    const auto slot = m_sim.messages.Add({MessageStatus::Unread, std::string(pdu)});
    if (slot && m_settings.messageReports == 1) Unsolicited("+CMTI: \"SM\"," + std::to_string(*slot), now);
    return slot;
}

void Modem::RequestUssd(Millis now) {
    m_agenda.Drop(Topic::Ussd);
    m_agenda.At(now + m_config.times.ussd, Topic::Ussd, [this](Millis then) {
        constexpr Millis patience = 60'000;
        m_ussdAsked = !m_ussdAsked && !m_config.ussdQuestion.empty();
        ReportUssd(m_ussdAsked ? 1 : 0, m_ussdAsked ? m_config.ussdQuestion : m_config.ussdAnswer, then);
        if (m_ussdAsked) m_agenda.At(then + patience, Topic::Ussd, [this](Millis later) { EndUssd(later); });
    });
}

void Modem::ReportUssd(int state, const std::string& text, Millis now) {
    const std::u16string units = Utf16FromUtf8(text);
    // Coding schemes of TS 23.038, 5: 15 = default alphabet, 72 = UCS2, which always stands in hexadecimal.
    const bool plain = GsmFromUtf16(units).has_value();
    const std::string words = OnLine(units, plain ? m_settings.charset : Charset::Ucs2);
    Unsolicited("+CUSD: " + std::to_string(state) + ",\"" + words + "\"," + (plain ? "15" : "72"), now);
}

void Modem::CancelUssd() {
    m_agenda.Drop(Topic::Ussd);
    m_ussdAsked = false;
}

void Modem::EndUssd(Millis now) {
    CancelUssd();
    Unsolicited("+CUSD: 2", now);
}

void Modem::OnRegistration(Millis now) {
    if (!m_powered) return;
    const Registration state = m_radio.State();
    constexpr std::string_view texts[] = {"not registered", "registered", "searches for a network"};
    if (m_booted) Say(texts[static_cast<std::size_t>(state)]);
    if (m_settings.registrationReports) Unsolicited("+CREG: " + std::to_string(static_cast<int>(state)), now);
    constexpr std::string_view noNetwork = "the module has no network";
    if (state != Registration::Home) {
        if (m_call.Lose(noNetwork)) Unsolicited("NO CARRIER", now);
        m_data.Lose(noNetwork);
    }
    if (Reachable() && onMessagesPossible) onMessagesPossible(now);
}

void Modem::Say(std::string_view text) const {
    if (m_hooks.say) m_hooks.say(text);
}

}  // namespace varkel::sim
