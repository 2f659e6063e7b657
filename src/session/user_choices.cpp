#include "session/user_choices.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace varkel {

namespace {

constexpr std::string_view volumeName = "GPRSVol";
constexpr int newUnitsVolume = 3;
constexpr Ticks slice = 10;

int LevelOf(std::string_view text) {
    int level = newUnitsVolume;
    std::from_chars(text.data(), text.data() + text.size(), level);
    return std::clamp(level, 0, UserChoices::loudest);
}

// What cannot be read is written anew, so that it is reported once.
int LoadLevel(ValueTable& table) {
    const bool loaded = table.Load();
    const int level = LevelOf(table.Get(volumeName));
    if (!loaded) {
        table.Set(volumeName, std::to_string(level));
        (void)table.Save();
    }
    return level;
}

}  // namespace

UserChoices::UserChoices(Session& session, CommandTurn& turn, DataLink& data, MessageHandling& messages)
    : m_session(session),
      m_turn(turn),
      m_data(data),
      m_messages(messages),
      m_volumes(VolumeValues(session.platform.registry, session.platform.notices)),
      m_worker(session.platform.runtime, "settings") {}

int UserChoices::Volume() {
    return m_volumes.With([](ValueTable& table) { return LoadLevel(table); });
}

int UserChoices::SetVolume(int level) {
    const int kept = std::clamp(level, 0, loudest);
    m_volumes.With([kept](ValueTable& table) {
        (void)LoadLevel(table);
        table.Set(volumeName, std::to_string(kept));
        (void)table.Save();
    });
    SendVolume();
    return kept;
}

// Of several changes that wait the last one is sent.
void UserChoices::SendVolume() {
    if (m_volumeWaits.exchange(true)) return;
    Send([this](CATChannel& at) {
        m_volumeWaits = false;
        at.cmd_set_volume(Volume());
    });
}

void UserChoices::SetNetworkMode(std::uint32_t mode) {
    m_session.settings.WriteDword(Settings::networkModeKey, "NetworkMode", mode);
    Send([this, mode](CATChannel& at) {
        m_session.state.profile.load()->setNetworkMode(at, static_cast<int>(mode));
    });
}

ValueFault UserChoices::SetServiceCenter(std::string_view text) {
    if (text.size() > longestCenter) return ValueFault::TooLong;
    CenterNumber number;
    const ValueFault fault = CenterNumber::Parse(text, number);
    if (fault != ValueFault::None) return fault;
    m_messages.SetServiceCenter(number);
    Send([number](CATChannel& at) { at.cmd_set_mscenter(number); });
    return ValueFault::None;
}

void UserChoices::SetRing(RingKind kind, int choice) {
    m_session.settings.WriteRing(kind, choice);
    if (!m_session.state.m_bCallActive) m_session.platform.sound.PlaySound(RingSound(kind, choice));
}

void UserChoices::RefreshSignal() {
    // What cannot be asked beside a request is asked at the next refresh.
    if (ModuleReady(m_session)) (void)m_turn.TryQuietly([this] { m_session.at.cmd_check_signal(); });
}

void UserChoices::Send(std::function<void(CATChannel&)> command) {
    const bool posted = m_worker.Post([this, command = std::move(command)] {
        while (ModuleReady(m_session)) {
            if (m_turn.TryQuietly([&] { command(m_session.at); })) return;
            if (!m_worker.Pause(slice)) return;
        }
        m_volumeWaits = false;
    });
    if (!posted) m_volumeWaits = false;
}

void UserChoices::AddOperator(const ISP_Struct& isp, Done done) {
    Start([this, isp] { return m_data.Operators().Add(isp); }, std::move(done));
}

void UserChoices::ChangeOperator(const ISP_Struct& seen, std::size_t index, const ISP_Struct& changed,
                                 Done done) {
    Start([this, seen, index, changed] { return m_data.Operators().Change(seen, index, changed); },
          std::move(done));
}

void UserChoices::DeleteOperator(const ISP_Struct& seen, std::size_t index, Done done) {
    Start([this, seen, index] { return m_data.Operators().Delete(seen, index); }, std::move(done));
}

void UserChoices::Start(std::function<StoreResult()> work, Done done) {
    MessageLoop& loop = m_session.platform.loop;
    const auto job = [&loop, work = std::move(work), done] {
        const StoreResult result = work();
        loop.Post([done, result] { done(result); });
    };
    if (!m_worker.Post(job)) loop.Post([done = std::move(done)] { done(StoreResult::WriteFailed); });
}

}  // namespace varkel
