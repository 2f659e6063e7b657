#include "session/client_requests.h"

#include <string>

#include "platform/text.h"

namespace varkel {

namespace {

// As other programs know them.
constexpr MessageId addListenWnd = WM_USER + 1000;
constexpr MessageId removeListenWnd = WM_USER + 1001;
constexpr MessageId getImsi = WM_USER + 1002;
constexpr MessageId getImei = WM_USER + 1003;
constexpr MessageId forceCheckGprs = WM_USER + 1004;
constexpr MessageId getConnectStatus = WM_USER + 1005;

// By dwData. Only the first one is carried out.
constexpr std::array<const char*, 5> copyDataNames{"", "rcvsm", "delsm", "getsm", "gessmcnt"};
constexpr std::size_t numberAt = 32;  // of a message's block
constexpr std::size_t textAt = 64;

constexpr std::size_t shortestIdentity = 3;
constexpr Ticks longestIdentityWait = 2000;

// The UTF-16 text in these bytes, up to its NUL or their end.
std::string WideText(std::span<const std::byte> bytes) {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto unit = static_cast<char16_t>(std::to_integer<unsigned>(bytes[i]) |
                                                std::to_integer<unsigned>(bytes[i + 1]) << 8);
        if (unit == 0) break;
        units.push_back(unit);
    }
    return Utf8FromUtf16(units);
}

}  // namespace

ClientRequests::ClientRequests(Session& session, CommandTurn& turn, CGSMData& block, SimCard& sim,
                               DataLink& link, Listeners& listeners, MessageHandling& messages)
    : m_session(session),
      m_turn(turn),
      m_block(block),
      m_link(link),
      m_listeners(listeners),
      m_messages(messages),
      m_worker(session.platform.runtime, "clients") {
    sim.SetIdentityWatch([this](IdQuery which) { OnIdentity(which); });
}

bool ClientRequests::OnMessage(const WindowMessage& message) {
    const WindowHandle window{message.wParam};
    switch (message.id) {
        case addListenWnd: OnAddListenWnd(window); return true;
        case removeListenWnd: OnRemoveListenWnd(window); return true;
        case getImsi: OnGetIMSI(); return true;
        case getImei: OnGetIMEI(); return true;
        case forceCheckGprs: m_link.OnForceCheckGprs(); return true;
        case getConnectStatus: OnGetConnectStatus(); return true;
        default: return false;
    }
}

void ClientRequests::OnAddListenWnd(WindowHandle window) {
    if (!m_listeners.Add(window)) {
        m_session.platform.log.Trace("[OnAddListenWnd]--%#x is refused", static_cast<unsigned>(window));
        return;
    }
    m_link.PingTest(
        [&listeners = m_listeners, window](LinkResult result) { listeners.Tell(window, result); });
}

void ClientRequests::AnswerIdentity(IdQuery which) {
    const bool imsi = which == IdQuery::Imsi;
    const SessionState& state = m_session.state;
    if ((imsi ? state.m_strImsi : state.m_strImei).Get().size() >= shortestIdentity) {
        PostReply(imsi ? Reply::Imsi : Reply::Imei);
        return;
    }
    OneShot& awaited = imsi ? m_imsiAwaited : m_imeiAwaited;
    const Ticks now = m_session.platform.runtime.GetTickCount();
    if (awaited.Pending() && TicksSince(now, awaited.Since()) < longestIdentityWait) return;
    awaited.Set(now);
    // While a request of the user's is under way nothing is asked: the program that waits asks again.
    [[maybe_unused]] const bool asked =
        m_turn.TryQuietly([&] { imsi ? m_session.at.cmd_get_cimi() : m_session.at.cmd_get_gsn(); });
}

// Read thread.
void ClientRequests::OnIdentity(IdQuery which) {
    OneShot& awaited = which == IdQuery::Imsi ? m_imsiAwaited : m_imeiAwaited;
    const Ticks since = awaited.Since();
    if (!awaited.Take()) return;
    if (TicksSince(m_session.platform.runtime.GetTickCount(), since) <= longestIdentityWait)
        PostReply(which == IdQuery::Imsi ? Reply::Imsi : Reply::Imei);
}

void ClientRequests::PostReply(Reply reply) {
    std::atomic<bool>& posted = m_replyPosted[static_cast<std::size_t>(reply)];
    if (posted.exchange(true)) return;
    const bool taken = m_worker.Post([this, reply, &posted] {
        posted = false;
        WriteReply(reply);
    });
    if (!taken) posted = false;
}

void ClientRequests::WriteReply(Reply reply) {
    switch (reply) {
        case Reply::Imsi: m_block.AnswerImsi(m_session.state.m_strImsi.Get()); break;
        case Reply::Imei: m_block.AnswerImei(m_session.state.m_strImei.Get()); break;
        case Reply::ConnectStatus:
            if (m_block.SetConnectionStatus(m_link.Exists() ? ConnectionStatus::Up : ConnectionStatus::NotUp))
                m_block.SignalResponse();
            break;
    }
}

std::uint32_t ClientRequests::OnCopyData(std::uint32_t dwData, std::span<const std::byte> data) {
    if (dwData >= copyDataNames.size()) return 0;
    if (dwData == 0) return SendShortMessage(data) ? 1 : 0;
    m_session.platform.notices.ShowMessageBox(copyDataNames[dwData], "");
    return 1;
}

bool ClientRequests::SendShortMessage(std::span<const std::byte> data) {
    if (data.size() < smallestBlock || data.size() > largestBlock) {
        m_session.platform.log.Trace("[OnCopyData]--a block of %zu bytes is refused", data.size());
        return false;
    }
    const std::string number = WideText(data.subspan(numberAt, textAt - numberAt));
    const std::string text = WideText(data.subspan(textAt));
    // The outbox is on the flash, which may take its time.
    return m_worker.Post([this, number, text] { m_messages.SendSMDll(number, text, Sender::Client); });
}

}  // namespace varkel
