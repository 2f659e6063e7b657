// The receiving side of the AT channel: keywords become events, events become calls of the controller's
// handlers.
#include <algorithm>
#include <array>
#include <utility>

#include "modem/at_channel.h"

namespace varkel {

namespace {

constexpr std::string_view okResult = "OK\r\n";
constexpr std::string_view errorResult = "ERROR";

// Whether the rest of the keyword's answer is to be awaited when a chunk ends within it.
bool MayBeSplit(Keyword keyword) {
    return keyword == Keyword::Cimi || keyword == Keyword::Gsn || keyword == Keyword::Cusd;
}

// The positions of both delimiters of the text, -1 for a missing one, are multiplied: a line that has neither
// counts as complete, one that has only one of them, or has one at its start, does not.
bool UssdComplete(std::string_view text) {
    const auto position = [text](std::string_view delimiter) {
        const std::size_t at = text.find(delimiter);
        return at == std::string_view::npos ? -1L : static_cast<long>(at);
    };
    return position(",\"") * position("\",") > 0;
}

bool IdentityComplete(std::string_view text) {
    const std::size_t end = text.find("\r\nOK");
    return end != std::string_view::npos && end > 0;
}

bool Complete(Keyword keyword, std::string_view text) {
    return keyword == Keyword::Cusd ? UssdComplete(text) : IdentityComplete(text);
}

// The events that do no more than call one handler with the text.
constexpr std::array<ModemHandlers::Text ModemHandlers::*, keywordTable.size()> textHandlers = [] {
    std::array<ModemHandlers::Text ModemHandlers::*, keywordTable.size()> table{};
    const auto set = [&table](Keyword keyword, ModemHandlers::Text ModemHandlers::*handler) {
        table[static_cast<std::size_t>(keyword)] = handler;
    };
    set(Keyword::Csq, &ModemHandlers::OnSignalStatus);
    set(Keyword::Cmti, &ModemHandlers::OnMsComeIn);
    set(Keyword::Cmgr, &ModemHandlers::OnMsContent);
    set(Keyword::Csca, &ModemHandlers::OnMsCenterNo);
    set(Keyword::Cpms, &ModemHandlers::OnCpms);
    set(Keyword::Clip, &ModemHandlers::OnRingNo);
    set(Keyword::Creg, &ModemHandlers::OnCreg);
    set(Keyword::CallReady, &ModemHandlers::OnCallReady);
    set(Keyword::Ccid, &ModemHandlers::OnCcid);
    set(Keyword::ModelInitComplete, &ModemHandlers::OnModelInitComplete);
    set(Keyword::Cpbs, &ModemHandlers::OnPhoneBookNum);
    set(Keyword::Cpbw, &ModemHandlers::OnPhoneBookTest);
    set(Keyword::Cpbr, &ModemHandlers::OnPhoneBookContent);
    set(Keyword::Cimi, &ModemHandlers::OnCimi);
    set(Keyword::Gsn, &ModemHandlers::OnGsn);
    set(Keyword::Cpin, &ModemHandlers::OnCpin);
    set(Keyword::Disc, &ModemHandlers::OnDisc);
    set(Keyword::Urcind, &ModemHandlers::OnUrcInd);
    set(Keyword::Csmins, &ModemHandlers::OnSimInserted);
    return table;
}();

}  // namespace

void CATChannel::ProcessRcv(std::string_view chunk) {
    if (m_log.Wants(LogLevel::Trace))
        m_log.Trace("[ProcessRcv]--Rcv:\r\n%s\r\n", LogText(m_log, chunk).CStr());
    if (chunk.empty()) return;
    m_ringAllowed = true;
    if (MayBeSplit(m_pending)) {
        // Whatever comes completes the answer; its own keywords are not looked for.
        const std::size_t room = m_accumulated.size() - m_accumulatedLength;
        const std::size_t count = std::min(chunk.size(), room);
        std::copy_n(chunk.begin(), count,
                    m_accumulated.begin() + static_cast<std::ptrdiff_t>(m_accumulatedLength));
        m_accumulatedLength += count;
        const Keyword complete = std::exchange(m_pending, Keyword::Csq);
        Process_event(complete, {m_accumulated.data(), m_accumulatedLength});
        // Behind the event: who sees that nothing is owed any more finds what the answer has brought.
        CountUnseenResults(chunk);
    } else {
        SearchAndDispatch(chunk);
    }
    if (m_log.DigitsMasked()) m_secrets.Received(chunk, m_runtime.GetTickCount());
}

void CATChannel::SearchAndDispatch(std::string_view chunk) {
    KeywordHits hits = FindKeywords(chunk);
    while (!hits.Empty()) {
        const Keyword keyword = hits.TakeFirst();
        const std::string_view text = chunk.substr(hits.Position(keyword));
        if (keyword == Keyword::Ok) {
            m_pending = Keyword::Csq;
            Process_event(keyword, chunk);
        } else if (!MayBeSplit(keyword)) {
            Process_event(keyword, text);
            m_pending = keyword;
        } else if (Complete(keyword, text)) {
            Process_event(keyword, text);
        } else {
            AwaitRest(keyword, text);
            CountUnseenResults(chunk);
            return;
        }
    }
}

void CATChannel::AwaitRest(Keyword keyword, std::string_view text) {
    m_accumulatedLength = std::min(text.size(), m_accumulated.size());
    std::copy_n(text.begin(), m_accumulatedLength, m_accumulated.begin());
    m_pending = keyword;
}

void CATChannel::Process_event(Keyword keyword, std::string_view param) {
    const auto index = static_cast<std::size_t>(keyword);
    if (m_log.Wants(LogLevel::Trace)) {
        m_log.Trace("[Process_event]--index:%zu--CmdString:%s----pParam:%s", index,
                    keywordTable[index].data(), LogText(m_log, param).CStr());
    }
    void* const owner = m_owner;
    if (!owner) return;
    if (keyword == Keyword::Cpin) m_cpinAsked.Take();
    if (const auto handler = textHandlers[index]) {
        if (m_handlers.*handler) (m_handlers.*handler)(owner, param);
        if (keyword == Keyword::Clip) m_log.Trace("[Process_event]--m_ringNo------------");
        return;
    }
    const auto atResult = [this, owner](AtResult result) {
        if (m_handlers.OnAtResult) m_handlers.OnAtResult(owner, result);
    };
    switch (keyword) {
        case Keyword::CannotConnect:
        case Keyword::NoCarrier:
        case Keyword::Busy:
        case Keyword::NoAnswer:
        case Keyword::NormalEnd:
        case Keyword::InvalidNum:
            if (m_handlers.OnCallHooked) m_handlers.OnCallHooked(owner);
            m_log.DebugOutput("CODE_BUSY ----------7\r\n");
            break;
        case Keyword::RingBack: m_ringAllowed = false; break;
        case Keyword::NoDialtone:
            dialPending.Take();
            atResult(AtResult::NoDialtone);
            break;
        case Keyword::Prompt: OnPrompt(); break;
        case Keyword::NoSim:
            if (m_handlers.OnNoSim) m_handlers.OnNoSim(owner);
            break;
        case Keyword::Connect: atResult(AtResult::Connect); break;
        case Keyword::Cusd:
            m_ussdSession = true;
            ussdPending.Take();
            if (m_handlers.OnUssd) m_handlers.OnUssd(owner, param, 1);
            break;
        case Keyword::SimBusy: m_simBusy = true; break;
        case Keyword::UnderVoltage: m_underVoltage = true; break;
        case Keyword::Ring:
            if (m_ringAllowed && m_handlers.OnRing) m_handlers.OnRing(owner, param);
            break;
        case Keyword::Error:
            CountFinalResults(param, errorResult);
            OnFinalError();
            break;
        case Keyword::Ok:
            CountFinalResults(param, okResult);
            OnFinalOk();
            break;
        default: break;  // CONNECT 1200 and SIM PUK required mean nothing by themselves
    }
}

void CATChannel::OnPrompt() {
    m_log.Trace("[BTNEV]CODE_SENDMS");
    m_promptAwaited = false;
    sendPending.Set(m_runtime.GetTickCount());
    if (!ServesClient() && m_handlers.OnSendState) m_handlers.OnSendState(m_owner, SendState::Sending);
    if (m_handlers.OnSendMsSuc) m_handlers.OnSendMsSuc(m_owner);
}

void CATChannel::CountUnseenResults(std::string_view chunk) {
    CountFinalResults(chunk, okResult);
    CountFinalResults(chunk, errorResult);
}

void CATChannel::CountFinalResults(std::string_view text, std::string_view result) {
    int results = 0;
    for (std::size_t at = text.find(result); at != std::string_view::npos; at = text.find(result, at + 1))
        ++results;
    // The sending side changes it too, and it never goes below none.
    int count = m_unanswered;
    while (count > 0 && !m_unanswered.compare_exchange_weak(count, std::max(count - results, 0))) {
    }
}

void CATChannel::OnFinalError() {
    m_finalResult = FinalResult::Error;
    if (m_cpinAsked.Take()) m_cpinRefused = true;
    if (m_handlers.OnAtResult) m_handlers.OnAtResult(m_owner, AtResult::Finished);
    if (!m_dialWasServiceCode && dialPending.Take() && m_handlers.OnCallHooked)
        m_handlers.OnCallHooked(m_owner);
    TakeSendResult(false);
    if (ussdPending.Take() && m_handlers.OnAtResult)
        m_handlers.OnAtResult(m_owner, AtResult::ServiceCodeFailed);
    ReportPhoneBookResult(false);
}

void CATChannel::OnFinalOk() {
    m_finalResult = FinalResult::Ok;
    if (m_handlers.OnAtResult) m_handlers.OnAtResult(m_owner, AtResult::Finished);
    if (!m_dialWasServiceCode && dialPending.Take() && m_handlers.OnCallEstablished) {
        m_handlers.OnCallEstablished(m_owner);
    }
    if (!m_dialWasServiceCode && hangUpPending.Take() && m_handlers.OnCallHooked)
        m_handlers.OnCallHooked(m_owner);
    TakeSendResult(true);
    ReportPhoneBookResult(true);
}

void CATChannel::ReportPhoneBookResult(bool ok) {
    if (phonebookPending.Take() && m_handlers.OnPhoneBookResult) m_handlers.OnPhoneBookResult(m_owner, ok);
}

bool CATChannel::ServesClient() const {
    return m_handlers.ServesClient && m_handlers.ServesClient(m_owner);
}

void CATChannel::TakeSendResult(bool sent) {
    // Once the result is taken, the controller may turn to the next message.
    const bool servesClient = ServesClient();
    if (!sendPending.Take()) return;
    if (servesClient) {
        if (!m_handlers.sendResult) return;
        sent ? m_handlers.sendResult->Set() : m_handlers.sendResult->Reset();
        return;
    }
    if (m_windows.FindWindow("MsgTipDlg") == WindowHandle::None) return;
    if (m_handlers.OnSendState) m_handlers.OnSendState(m_owner, sent ? SendState::Sent : SendState::Failed);
    if (m_handlers.OnSendTip) m_handlers.OnSendTip(m_owner);
}

}  // namespace varkel
