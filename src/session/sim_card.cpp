#include "session/sim_card.h"

#include <string>

#include "modem/at_values.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr Ticks identityWait = 2000;
constexpr std::size_t longestIdentity = 255;  // characters, as the shared block holds

// The rest of the first line behind its keyword, without the blanks around it.
std::string_view LineBehind(std::string_view text, std::string_view keyword) {
    text.remove_prefix(std::min(keyword.size(), text.size()));
    return Trimmed(text.substr(0, text.find("\r\n")));
}

}  // namespace

SimCard::SimCard(Session& session)
    : m_session(session), m_identityReply(session.platform.runtime.CreateEvent(EventReset::Manual)) {
    m_identityReply->Reset();
}

void SimCard::OnCpin(std::string_view text) {
    SessionState& state = m_session.state;
    m_session.platform.log.Trace("[BTNEV]enter OnCpin");
    const std::string_view answer = LineBehind(text, "+CPIN:");
    const auto& simAnswers = state.profile.load()->simAnswers;
    for (std::size_t i = 0; i < simAnswers.size(); ++i) {
        if (answer != simAnswers[i]) continue;
        state.m_nCpinState = static_cast<SimState>(i);
        state.m_simPresence = SimPresence::Present;
    }
    if (answer == "NOT READY") {
        state.m_simPresence = SimPresence::Absent;
        m_session.screens.Warn(WarnCode::NoSim);
    }
}

void SimCard::OnUrcInd(std::string_view text) {
    if (text.find("+URCIND:5\r\n") != std::string_view::npos) m_session.state.m_bModuleReady = true;
    if (text.find("+URCIND:3\r\n") != std::string_view::npos) m_session.state.g_bSimOk = false;
}

void SimCard::OnSimInserted(std::string_view text) {
    // "+CSMINS: <report>,<inserted>"; the indication carries the second alone.
    const std::string_view line = LineBehind(text, "+CSMINS:");
    const std::size_t comma = line.find(',');
    int inserted = 0;
    if (!ParseInt(Trimmed(comma == std::string_view::npos ? line : line.substr(comma + 1)), inserted)) return;
    m_session.platform.log.Trace("[BTNEV]OnSimInserted:%d", inserted);
    m_session.state.m_simPresence = inserted != 0 ? SimPresence::Present : SimPresence::Absent;
}

void SimCard::OnNoSim() {
    m_session.state.g_bSimOk = false;
}

void SimCard::OnCimi(std::string_view text) {
    m_session.platform.log.Trace("[BTNEV]enter OnCimi");
    OnIdentity(text, IdQuery::Imsi);
}

void SimCard::OnGsn(std::string_view text) {
    m_session.platform.log.Trace("[BTNEV]enter OnGsn");
    OnIdentity(text, IdQuery::Imei);
}

void SimCard::OnIdentity(std::string_view text, IdQuery which) {
    const std::size_t end = text.find("\r\nOK");
    if (end == std::string_view::npos) return;
    const std::string_view answer = text.substr(0, end);
    // A refused question is completed by whatever comes next, be it the answer to the other one.
    if (answer.find("ERROR") != std::string_view::npos) return;
    std::size_t first = 0;
    while (first < answer.size() && !IsDigit(answer[first]))
        ++first;
    const std::string_view line = answer.substr(first, answer.find('\r', first) - first);
    const std::string value(CutUtf8(Trimmed(line), longestIdentity));
    if (value.empty()) return;

    (which == IdQuery::Imsi ? m_session.state.m_strImsi : m_session.state.m_strImei).Set(value);
    m_session.settings.WriteSimIdentity(which == IdQuery::Imsi ? "IMSI" : "IMEI", value);
    // An answer that comes after its time must not pass for the other one's.
    if (m_session.state.m_nIdQuery == which) m_identityReply->Set();
    if (m_onIdentity) m_onIdentity(which);
}

void SimCard::QueryIdentity(IdQuery which) {
    m_session.state.m_nIdQuery = which;
    if (which == IdQuery::Imsi) {
        m_session.at.cmd_get_cimi();
    } else {
        m_session.at.cmd_get_gsn();
    }
    m_identityReply->Wait(identityWait);
    m_identityReply->Reset();
    m_session.state.m_nIdQuery = IdQuery::None;
}

}  // namespace varkel
