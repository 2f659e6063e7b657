#include "simulator/voice_call.h"

#include <algorithm>
#include <iterator>

#include "simulator/modem.h"

namespace varkel::sim {

namespace {

// At some numbers somebody acts without being told to; the console's help names them.
enum class Habit { None, Answers, IsBusy, NeverAnswers, CallsBack };

struct KnownNumber {
    std::string_view number;
    Habit habit;
};

constexpr KnownNumber knownNumbers[] = {
    {"10000", Habit::Answers},   {"10001", Habit::IsBusy}, {"10002", Habit::NeverAnswers},
    {"10003", Habit::CallsBack}, {"112", Habit::Answers},
};

Habit HabitAt(std::string_view number) {
    const auto* const known =
        std::find_if(std::begin(knownNumbers), std::end(knownNumbers),
                     [number](const KnownNumber& each) { return each.number == number; });
    return known == std::end(knownNumbers) ? Habit::None : known->habit;
}

// "+CLIP:" as in 3GPP TS 27.007, 7.6: number, its type, no subaddress, the SIM's name for it, validity.
std::string CallerLine(const std::string& number, Modem& modem) {
    if (number.empty()) return "+CLIP: \"\",128,,,,1";  // withheld
    const SimPhonebook& book = modem.Sim().phonebook;
    std::string name;
    for (int slot = 1; slot <= book.Slots() && name.empty(); ++slot) {
        const PhonebookEntry* const entry = book.Find(slot);
        if (entry && entry->number == number)
            name = "\"" + OnLine(entry->name, modem.Settings().charset) + "\"";
    }
    const bool international = number.starts_with('+');
    return "+CLIP: \"" + number + "\"," + (international ? "145" : "129") + ",,," + name + ",0";
}

}  // namespace

bool VoiceCall::Dial(std::string_view number, Millis now) {
    if (m_phase != CallPhase::Idle) return false;
    Begin(CallPhase::Dialling, number);
    Say("call to " + FarEnd());
    constexpr Millis soon = 1'000;
    switch (HabitAt(number)) {
        case Habit::Answers: After(2 * soon, now, [this](Millis then) { FarEndAnswers(then); }); break;
        case Habit::IsBusy: After(soon, now, [this](Millis then) { FarEndFails("BUSY", then); }); break;
        case Habit::CallsBack: After(soon, now, [this](Millis then) { PlanCallBack(then); }); break;
        case Habit::NeverAnswers:
        case Habit::None:
            After(longestDialling, now, [this](Millis then) { FarEndFails("NO ANSWER", then); });
            break;
    }
    return true;
}

bool VoiceCall::Answer() {
    if (m_phase != CallPhase::Incoming) return false;
    m_phase = CallPhase::Active;
    m_agenda.Drop(Topic::Call);
    Say("the module takes the call from " + FarEnd());
    return true;
}

bool VoiceCall::HangUp(Millis now) {
    const CallPhase phase = m_phase;
    if (phase == CallPhase::Idle) return false;
    Say((phase == CallPhase::Incoming ? "the module refuses the call from " : "the module hangs up on ") +
        FarEnd());
    End();
    if (phase == CallPhase::Dialling) m_modem.Unsolicited("NO CARRIER", now);
    return true;
}

bool VoiceCall::SendTone(char tone) {
    if (m_phase != CallPhase::Active) return false;
    Say(FarEnd() + " hears the tone " + tone);
    return true;
}

void VoiceCall::Ring(std::string_view number, Millis now) {
    const bool engaged = m_phase != CallPhase::Idle;
    if (engaged || !m_modem.Reachable()) {
        Say("call from " + (number.empty() ? "a hidden number" : std::string(number)) +
            (engaged ? " is refused: the module is engaged" : " fails: the module is out of reach"));
        return;
    }
    Begin(CallPhase::Incoming, number);
    Say("call from " + FarEnd());
    RingAgain(now, now);
}

void VoiceCall::RingAgain(Millis since, Millis now) {
    if (now - since >= patience) {
        FarEndHangsUp(now);
        return;
    }
    m_modem.Unsolicited("RING", now);
    if (m_modem.Settings().callerNumber == 1) m_modem.Unsolicited(CallerLine(m_number, m_modem), now);
    After(ringPeriod, now, [this, since](Millis then) { RingAgain(since, then); });
}

bool VoiceCall::FarEndAnswers(Millis now) {
    if (m_phase != CallPhase::Dialling) return false;
    m_phase = CallPhase::Active;
    m_agenda.Drop(Topic::Call);
    Say(FarEnd() + " answers");
    m_modem.Unsolicited("OK", now);
    return true;
}

bool VoiceCall::FarEndFails(std::string_view result, Millis now) {
    if (m_phase != CallPhase::Dialling) return false;
    Say("call to " + FarEnd() + " fails: " + std::string(result));
    End();
    m_modem.Unsolicited(result, now);
    return true;
}

bool VoiceCall::FarEndHangsUp(Millis now) {
    if (m_phase == CallPhase::Idle) return false;
    Say(FarEnd() + (m_phase == CallPhase::Incoming ? " gives up" : " hangs up"));
    End();
    m_modem.Unsolicited("NO CARRIER", now);
    return true;
}

bool VoiceCall::Lose(std::string_view why) {
    if (m_phase == CallPhase::Idle) return false;
    Say("the call with " + FarEnd() + " ends: " + std::string(why));
    End();
    return true;
}

void VoiceCall::PlanCallBack(Millis now) {
    constexpr Millis talk = 1'000;
    FarEndAnswers(now);
    After(talk, now, [this](Millis then) {
        const std::string number = m_number;
        FarEndHangsUp(then);
        m_agenda.Drop(Topic::CallBack);
        m_agenda.At(then + callBackAfter, Topic::CallBack,
                    [this, number](Millis later) { Ring(number, later); });
    });
}

std::string VoiceCall::FarEnd() const {
    return m_number.empty() ? "a hidden number" : m_number;
}

void VoiceCall::Begin(CallPhase phase, std::string_view number) {
    m_phase = phase;
    m_outgoing = phase == CallPhase::Dialling;
    m_number = number;
}

void VoiceCall::End() {
    m_agenda.Drop(Topic::Call);
    m_phase = CallPhase::Idle;
    m_number.clear();
}

void VoiceCall::After(Millis time, Millis now, Agenda::Work work) {
    m_agenda.At(now + time, Topic::Call, std::move(work));
}

void VoiceCall::Say(std::string_view text) const {
    const ModemHooks& hooks = m_modem.Hooks();
    if (hooks.network) hooks.network(text);
}

}  // namespace varkel::sim
