#include "session/ras_connection.h"

#include <utility>

namespace varkel {

namespace {

constexpr TimerId dialTimer = static_cast<TimerId>(SessionTimer::DialTimeout);

DataState DataStateOf(RasState state) {
    switch (state) {
        case RasState::Connected: return DataState::Connected;
        case RasState::Disconnected: return DataState::Off;
        default: return DataState::Dialling;
    }
}

}  // namespace

RasConnection::~RasConnection() {
    m_session.platform.loop.KillTimer(dialTimer);
}

bool RasConnection::Dial(const RasDialParams& params) {
    // States may arrive before RasDial returns.
    const DialNumber number = ++m_last;
    m_dialled.Set({.number = number});
    RasHandle handle = RasHandle::None;
    const auto notifier = [this, number](RasState state) { OnState(number, state); };
    const RasError error = m_session.platform.dialUp.RasDial(params, notifier, handle);
    m_session.platform.log.Trace("[OpenNet]RasDial:%u", static_cast<unsigned>(error));
    m_dialled.With([&](Dialled& dialled) {
        dialled.handle = handle;
        if (error != RasError::None) {
            dialled = {};
            m_session.state.m_dataState = DataState::Off;
        }
    });
    return error == RasError::None;
}

bool RasConnection::HangUp() {
    const Dialled ended = m_dialled.With([this](Dialled& dialled) {
        m_session.state.m_dataState = DataState::Off;
        return std::exchange(dialled, {});
    });
    if (ended.handle == RasHandle::None) return false;
    m_session.platform.loop.KillTimer(dialTimer);
    m_session.platform.log.Trace("[RasHangUp]RasHangUp");
    m_session.screens.Repaint();
    m_session.platform.dialUp.RasHangUp(ended.handle);
    return true;
}

RasHandle RasConnection::Handle() const {
    return m_dialled.With([](const Dialled& dialled) { return dialled.handle; });
}

DialNumber RasConnection::Current() const {
    return m_dialled.With([](const Dialled& dialled) { return dialled.number; });
}

void RasConnection::OnState(DialNumber number, RasState state) {
    m_session.platform.log.Trace("[OnRasDialEvent]%#x", static_cast<unsigned>(state));
    const DataState now = DataStateOf(state);
    const bool current = m_dialled.With([&](Dialled& dialled) {
        if (dialled.number != number || dialled.over) return false;
        dialled.over = state == RasState::Disconnected;
        m_session.state.m_dataState = now;
        return true;
    });
    if (!current) return;
    if (state == RasState::OpenPort) StartTimer(number);
    if (now != DataState::Dialling) m_session.platform.loop.KillTimer(dialTimer);
    m_session.screens.Repaint();
    if (state == RasState::Disconnected) m_onEnd(number, End::Disconnected);
}

void RasConnection::StartTimer(DialNumber number) {
    m_session.platform.loop.SetTimer(dialTimer, longestDial, [this, number] {
        m_session.platform.loop.KillTimer(dialTimer);
        m_onEnd(number, End::TimedOut);
    });
}

}  // namespace varkel
