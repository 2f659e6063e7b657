#include "session/message_receiving.h"

#include <algorithm>
#include <utility>

#include "modem/sms_pdu.h"
#include "platform/text.h"
#include "session/main_window.h"

namespace varkel {

namespace {

constexpr Ticks storagePause = 200;
constexpr Ticks formatPause = 200;
constexpr Ticks readPause = 100;
constexpr Ticks longestAnswer = 5000;
constexpr Ticks slice = 20;
constexpr Ticks beforeSound = 2000;
constexpr Ticks afterSound = 1000;
constexpr Ticks deletePause = 1000;

}  // namespace

MessageReceiving::MessageReceiving(Session& session, CommandTurn& turn, CallControl& calls, MessageBox& inbox,
                                   Worker& worker)
    : m_session(session), m_turn(turn), m_calls(calls), m_inbox(inbox), m_worker(worker) {}

bool MessageReceiving::OnMsComeIn(std::string_view text) {
    constexpr std::string_view keyword = "+CMTI:";
    constexpr std::size_t slotAt = 12;  // behind +CMTI: "SM",
    m_session.platform.log.Trace("[BTNEV]OnMsComeIn");
    bool announced = false;
    // One event is raised for a chunk, whatever it holds: all its announcements are looked for here.
    for (std::size_t at = 0; at != std::string_view::npos; at = text.find(keyword, at + 1)) {
        const std::string_view line = text.substr(at, text.find("\r\n", at) - at);
        int number = 0;
        if (line.size() < slotAt || !ParseInt(line.substr(slotAt), number)) continue;
        if (const auto slot = SimSlot::From(number)) {
            m_slots.Announce(*slot);
            announced = true;
        }
    }
    return announced;
}

void MessageReceiving::OnMsContent(std::string_view text) {
    m_session.platform.log.Trace("[BTNEV]OnMsContent");
    if (!m_readPending.exchange(false)) return;
    FixedText<1024> answer;
    answer.Assign(text.substr(0, 1023));
    m_answer.Set(answer);
}

template <class Send>
bool MessageReceiving::Quietly(Send send, Ticks pause) {
    while (ModuleReady(m_session)) {
        if (m_turn.TryQuietly(send)) return m_worker.Pause(pause);
        if (!m_worker.Pause(slice)) break;
    }
    return false;
}

bool MessageReceiving::ReadNext() {
    if (!ModuleReady(m_session)) return false;
    const auto slot = m_slots.TakeNext();
    if (!slot) return false;
    switch (Read(*slot, Which::Any)) {
        case Reading::Kept:
            m_slots.Done(*slot);
            if (NearlyFull()) StartCleaning();
            break;
        case Reading::NotKept: m_slots.GiveUp(*slot); break;
        case Reading::Empty:
        case Reading::NoAnswer:
            if (!m_slots.Failed(*slot))
                m_session.platform.log.Trace("[OnMsContent]--slot %d gives no message", slot->Number());
            break;
        case Reading::Undecodable:
            // Perhaps only this answer was cut short on its way.
            if (m_slots.Failed(*slot)) break;
            m_session.platform.log.Trace("[OnMsContent]--slot %d holds no message", slot->Number());
            m_slots.Done(*slot);
            StartCleaning();
            break;
    }
    return true;
}

bool MessageReceiving::OnCpms(std::string_view text) {
    // "+CPMS: used,total,..." or, when it was asked for, "+CPMS: "SM",used,total,...".
    constexpr std::string_view keyword = "+CPMS:";
    std::string_view line = text.substr(0, text.find("\r\n"));
    line = Trimmed(line.substr(std::min(keyword.size(), line.size())));
    if (line.starts_with('"')) line = line.substr(std::min(line.find(',') + 1, line.size()));
    const std::size_t comma = line.find(',');
    int used = 0;
    int total = 0;
    if (comma == std::string_view::npos || !ParseInt(line, used) || !ParseInt(line.substr(comma + 1), total))
        return false;
    m_simTotal = std::clamp(total, 0, SimSlot::largest);
    m_simUsed = std::clamp(used, 0, SimSlot::largest + 1);
    return used > m_slots.Known();
}

void MessageReceiving::OnModuleClosed() {
    m_slots.Clear();
    m_simUsed = 0;
}

bool MessageReceiving::LookNext() {
    const bool complete = m_simUsed <= m_slots.Known();
    const auto slot = SimSlot::From(m_lookNext);
    if (complete || !ModuleReady(m_session) || !slot || m_lookNext > m_simTotal) {
        // A module that counts otherwise is not searched for ever.
        if (m_lookNext > m_simTotal) m_simUsed = m_slots.Known();
        m_lookNext = 0;
        return false;
    }
    ++m_lookNext;
    if (m_slots.Knows(*slot)) return true;
    switch (Read(*slot, Which::Unread)) {
        case Reading::Kept: m_slots.Done(*slot); break;
        case Reading::NotKept: m_slots.GiveUp(*slot); break;
        case Reading::Undecodable: m_slots.Done(*slot); break;
        case Reading::Empty:
        case Reading::NoAnswer: break;
    }
    return true;
}

MessageReceiving::Reading MessageReceiving::Read(SimSlot slot, Which which) {
    CATChannel& at = m_session.at;
    if (!Quietly([&] { at.cmd_set_sm(); }, storagePause) ||
        !Quietly([&] { at.cmd_set_pdums(); }, formatPause)) {
        return Reading::NoAnswer;
    }
    m_answer.Set({});
    m_readPending = true;
    FixedText<1024> answer;
    const auto index = static_cast<std::size_t>(slot.Number());
    const bool askedBefore = m_unkept[index];
    m_unkept[index] = true;
    Ticks start = 0;
    const auto ask = [&] {
        start = m_session.platform.runtime.GetTickCount();
        at.cmd_readms(slot);
    };
    const Reading outcome = Quietly(ask, readPause) ? AwaitContent(start, answer) : Reading::NoAnswer;
    m_readPending = false;
    if (outcome != Reading::Kept) {
        if (outcome == Reading::Empty) m_unkept[index] = askedBefore;
        return outcome;
    }
    // "+CMGR: 0,..." is a message that was not read before.
    const bool wanted = which == Which::Any || askedBefore || answer.View().starts_with("+CMGR: 0,");
    const Reading result = wanted ? Keep(slot, answer.View()) : Reading::Kept;
    m_unkept[index] = result != Reading::Kept;
    return result;
}

// Kept when there is content. An answer that is late may have been lost with a message that the module takes
// for read; the next command would look like its end.
MessageReceiving::Reading MessageReceiving::AwaitContent(Ticks start, FixedText<1024>& answer) {
    for (;;) {
        // Looked at before the content, because the final result comes behind it.
        const bool over = !m_session.at.AnswerOutstanding(infiniteTicks);
        const bool late = TicksSince(m_session.platform.runtime.GetTickCount(), start) >= longestAnswer;
        answer = m_answer.Get();
        if (!answer.Empty()) return Reading::Kept;
        if (late || !ModuleReady(m_session)) return Reading::NoAnswer;
        if (over) return Reading::Empty;
        if (!m_worker.Pause(slice)) return Reading::NoAnswer;
    }
}

MessageReceiving::Reading MessageReceiving::Keep(SimSlot slot, std::string_view answer) {
    constexpr std::string_view lineEnd = "\r\n";
    const std::size_t headerEnd = answer.find(lineEnd);
    if (headerEnd == std::string_view::npos) return Reading::Undecodable;
    const std::string_view pdu = answer.substr(headerEnd + lineEnd.size());
    SmsPduRecord message;
    if (DecodeDeliverPdu(m_session.platform.codePage, pdu, message) == 0) return Reading::Undecodable;

    const SmsRecord record = MakeSmsRecord(SmsTimeFromStamp(message.TP_SCTS.View()), message.TPA.View(),
                                           message.TP_UD.View(), SmsState::Unread);
    m_session.platform.log.Trace("OnMsContent------Index:%c---Msg.TPA:%s---Msg.TP_UD:%s--Msg.TP_SCTS:%s-\r\n",
                                 static_cast<char>(record.Index),
                                 LogText(m_session.platform.log, message.TPA.View()).CStr(),
                                 LogText(m_session.platform.log, message.TP_UD.View()).CStr(),
                                 LogText(m_session.platform.log, message.TP_SCTS.View()).CStr());
    const auto index = static_cast<std::size_t>(slot.Number());
    const bool known = m_announcedUnkept[index];
    if (!known) {
        ++m_session.state.m_nNewMessages;
        m_toAnnounce = std::min(m_toAnnounce + 1, mostAnnouncements);
    }
    const StoreResult result = m_inbox.WriteSmsRecord(record);
    if (result == StoreResult::VolumeFull) m_session.screens.Warn(WarnCode::NandFull);
    m_session.screens.Repaint();
    m_announcedUnkept[index] = result != StoreResult::Done;
    return result == StoreResult::Done ? Reading::Kept : Reading::NotKept;
}

bool MessageReceiving::AnnounceNext() {
    // A call that began meanwhile comes first.
    if (m_calls.Busy()) return false;
    Runtime& runtime = m_session.platform.runtime;
    if (m_step == Step::Idle) {
        if (m_toAnnounce == 0) return false;
        --m_toAnnounce;
        if (m_session.state.m_externalClient && m_received) m_received->Set();
        Broadcast(m_session.platform, "UM_CALLIN", 1, 1);
        m_announcePause.Start(runtime, beforeSound);
        m_step = Step::Called;
        return true;
    }
    if (!m_announcePause.Over(runtime)) return false;
    if (m_step == Step::Called) {
        m_session.platform.sound.PlaySound(
            RingSound(RingKind::Message, m_session.settings.ReadRing(RingKind::Message)));
        m_announcePause.Start(runtime, afterSound);
        m_step = Step::Played;
        return true;
    }
    FinishAnnouncement();
    return true;
}

void MessageReceiving::FinishAnnouncement() {
    Broadcast(m_session.platform, "UM_CALLHOOKED", 1, 1);
    m_step = Step::Idle;
    if (m_session.screens.IsWindowEnabled() && m_session.state.m_nNewMessages >= 1)
        m_session.screens.ShowNewMessages();
    StartCleaning();
}

void MessageReceiving::StartCleaning() {
    const auto highest = m_slots.TakeHighest();
    const int end = highest ? highest->Number() : 0;
    m_cleanEnd = m_cleaning ? std::max(m_cleanEnd, end) : end;
    m_cleanAgain = m_cleaning && m_cleanNext > 0;
    m_cleaning = true;
}

bool MessageReceiving::CleanNext() {
    Runtime& runtime = m_session.platform.runtime;
    const bool announcing = m_step != Step::Idle || m_toAnnounce > 0;
    if (!m_cleaning || (announcing && !NearlyFull()) || !m_cleanPause.Over(runtime)) return false;
    if (m_cleanNext >= m_cleanEnd || !ModuleReady(m_session)) {
        m_cleanNext = 0;
        m_cleaning = std::exchange(m_cleanAgain, false) && ModuleReady(m_session);
        return m_cleaning;
    }
    const auto slot = SimSlot::From(m_cleanNext);
    if (slot && !m_slots.Holds(*slot) && !m_slots.Emptied(*slot)) {
        if (!m_turn.TryQuietly([&] { m_session.at.cmd_deletems(*slot); })) return false;
        if (m_slots.Knows(*slot)) --m_simUsed;
        m_slots.Deleted(*slot);
        m_cleanPause.Start(runtime, deletePause);
    }
    ++m_cleanNext;
    return true;
}

}  // namespace varkel
