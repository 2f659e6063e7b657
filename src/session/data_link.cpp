#include "session/data_link.h"

#include <string>
#include <utility>

namespace varkel {

namespace {

constexpr const char* entryName = "connet";
constexpr Ticks apnPause = 200;
constexpr Ticks apnSettles = 1000;
constexpr Ticks dialShown = 3000;
constexpr Ticks hangUpPause = 3000;
constexpr Ticks nothingToHangUp = 2000;
constexpr Ticks signalPause = 1000;
constexpr Ticks slice = 20;

}  // namespace

DataLink::DataLink(Session& session, CommandTurn& turn, Listeners& listeners)
    : m_session(session),
      m_turn(turn),
      m_listeners(listeners),
      m_operators(session.platform.files, session.platform.log),
      g_ISPStruct(DefaultIsp()),
      m_waits(session.platform.runtime),
      m_connection(session,
                   [this](DialNumber number, RasConnection::End end) {
                       m_worker.Post([this, number, end] { OnEnd(number, end); });
                   }),
      m_test(session, turn, m_connection, m_waits, [this] { HangUp(); }),
      m_worker(session.platform.runtime, "data link") {}

DataLink::~DataLink() {
    m_waits.Cancel();
}

void DataLink::Start() {
    if (const auto kept = m_session.settings.ReadIsp()) g_ISPStruct.Set(*kept);
}

bool DataLink::GetApn() {
    const auto isp = m_operators.Find(m_session.state.m_strImsi.Get());
    m_session.platform.log.Trace("[GetApn]%s", isp ? std::string(isp->szAPN.View()).c_str() : "none");
    if (isp) SetISPToReg(*isp);
    return isp.has_value();
}

bool DataLink::SetISPToReg(const ISP_Struct& isp) {
    g_ISPStruct.Set(isp);
    if (m_session.settings.WriteIsp(isp)) return true;
    m_session.platform.notices.ShowMessageBox("Failed to set ISP to REG!", "");
    return false;
}

// Null when the job could not be posted.
std::shared_ptr<Event> DataLink::PostWithEnd(std::function<void()> job) {
    auto end = m_session.platform.runtime.CreateEvent(EventReset::Manual);
    const bool posted = m_worker.Post([job = std::move(job), end] {
        job();
        end->Set();
    });
    return posted ? end : nullptr;
}

void DataLink::OpenNet(OpenWaits& opening) {
    const auto end = PostWithEnd([this] { Dial(); });
    while (end && end->Wait(slice) != WaitResult::Object0 && !opening.Cancelled()) {
    }
}

void DataLink::ShutDown() {
    m_waits.Cancel();
    const auto end = PostWithEnd([this] {
        m_waits.Reset();
        HangUp();
    });
    if (end) end->Wait(infiniteTicks);
}

void DataLink::Ask(Wish wish) {
    if (m_wish.exchange(wish) != Wish::None) return;
    const bool posted =
        m_worker.Post([this] { m_wish.exchange(Wish::None) == Wish::Dial ? Dial() : HangUp(); });
    if (!posted) m_wish = Wish::None;
}

void DataLink::OnPoorSignal() {
    m_worker.Post([this] {
        m_session.platform.log.Trace("[OnPoorSignal]");
        m_listeners.TellAll({LinkStatus::DoesNotWork, LinkReason::PoorSignal});
        HangUp();
        (void)m_waits.Pause(signalPause);
    });
}

void DataLink::OnGoodSignal() {
    m_worker.Post([this] {
        Dial();
        (void)m_waits.Pause(signalPause);
        m_session.state.m_nLowSignalCount = 0;
    });
}

bool DataLink::PingTest(Answer answer) {
    const std::size_t waiting = m_answers.With([&](std::vector<Answer>& answers) {
        if (answers.size() >= mostWaiting) return std::size_t{0};
        answers.push_back(std::move(answer));
        return answers.size();
    });
    if (waiting != 1 || m_worker.Post([this] { AnswerAll(); })) return waiting != 0;
    m_answers.Set({});
    return false;
}

void DataLink::OnForceCheckGprs() {
    if (m_checkAsked.exchange(true)) return;
    const bool asked = PingTest([this](LinkResult result) {
        m_checkAsked = false;
        m_listeners.TellAll(result);
    });
    if (!asked) m_checkAsked = false;
}

void DataLink::AnswerAll() {
    const LinkResult result = m_test.PingTest();
    m_session.platform.log.Trace("[PingTest]%u %u", static_cast<unsigned>(result.status),
                                 static_cast<unsigned>(result.reason));
    const auto answers = m_answers.With([](std::vector<Answer>& all) { return std::exchange(all, {}); });
    for (const Answer& answer : answers)
        answer(result);
}

void DataLink::Dial() {
    if (Exists() || !m_session.state.m_bModuleOpen || !UsbLinkPresent()) return;
    m_session.platform.log.Trace("[OpenNet]OpenNet");
    const ISP_Struct isp = CurrentIsp();
    ShowStatus("IDS_LINKNET");
    if (SetApn(isp)) {
        if (!m_connection.Dial(ParamsOf(isp))) m_session.screens.Warn(WarnCode::DialupFail);
        (void)m_waits.Pause(dialShown);
    }
    ClearStatus();
}

bool DataLink::SetApn(const ISP_Struct& isp) {
    ApnName apn;
    if (ApnName::Parse(isp.szAPN.View(), apn) != ValueFault::None) {
        m_session.platform.log.Trace("[OpenNet]--no usable access point");
        m_session.screens.Warn(WarnCode::DialupFail);
        return false;
    }
    return m_turn.AwaitQuietly(m_waits, [&] { m_session.at.cmd_set_apn(apn); }) && m_waits.Pause(apnPause) &&
           m_waits.Pause(apnSettles);
}

RasDialParams DataLink::ParamsOf(const ISP_Struct& isp) const {
    const CodePage& page = m_session.platform.codePage;
    return {.entryName = entryName,
            .userName = Utf8FromNarrow(page, isp.userName.View()),
            .password = Utf8FromNarrow(page, isp.password.View())};
}

void DataLink::HangUp() {
    ShowStatus(m_session.state.m_bModuleOpen ? "IDS_UNLINKNET" : "IDS_MODULE_CLOSEING");
    (void)m_waits.Pause(m_connection.HangUp() ? hangUpPause : nothingToHangUp);
    ClearStatus();
}

void DataLink::OnEnd(DialNumber number, RasConnection::End end) {
    if (m_connection.Current() != number) return;
    if (end == RasConnection::End::TimedOut) {
        HangUp();
    } else if (m_connection.HangUp()) {
        (void)m_waits.Pause(hangUpPause);
    }
}

bool DataLink::UsbLinkPresent() {
    int present = 0;
    return m_session.platform.driver.GetUsbHostStatus(present) && present != 0;
}

// The status line belongs to a call as long as there is one.
void DataLink::ShowStatus(const char* key) {
    if (!m_session.state.m_bCallActive)
        m_session.screens.SetStatusText(m_session.platform.language.LoadString(key));
}

void DataLink::ClearStatus() {
    if (!m_session.state.m_bCallActive) m_session.screens.SetStatusText("");
}

}  // namespace varkel
