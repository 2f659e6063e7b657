// A dial-up service and a network that do what the test says.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "platform/dial_up.h"
#include "platform/guarded.h"
#include "platform/icmp_echo.h"
#include "platform/message_loop.h"

namespace varkel::test {

// Reports no state by itself unless it `connects`: the test calls Report.
class ScriptedDialUp final : public DialUp {
  public:
    explicit ScriptedDialUp(MessageLoop& loop) : m_loop(loop) {}

    RasError RasDial(const RasDialParams& params, std::function<void(RasState)> notifier,
                     RasHandle& handle) override {
        {
            const std::lock_guard lock(m_mutex);
            m_dialled.push_back(params);
            handle = RasHandle::None;
            if (refusal != RasError::None) return refusal;
            handle = m_current = static_cast<RasHandle>(++m_last);
            m_notifier = std::move(notifier);
        }
        if (!connects) return RasError::None;
        for (const RasState state : {RasState::OpenPort, RasState::ConnectDevice, RasState::Connected})
            Report(state);
        return RasError::None;
    }

    void RasHangUp(RasHandle handle) override {
        const std::lock_guard lock(m_mutex);
        ++hangUps;
        if (handle == m_current) m_current = RasHandle::None;
    }

    std::string PeerAddress(RasHandle handle) override {
        const std::lock_guard lock(m_mutex);
        return handle != RasHandle::None && handle == m_current ? "10.64.64.64" : "";
    }

    void Report(RasState state) {
        std::function<void(RasState)> notifier;
        {
            const std::lock_guard lock(m_mutex);
            notifier = m_notifier;
        }
        if (notifier) m_loop.Post([notifier, state] { notifier(state); });
    }

    std::vector<RasDialParams> Dialled() {
        const std::lock_guard lock(m_mutex);
        return m_dialled;
    }
    void ForgetDialled() {
        const std::lock_guard lock(m_mutex);
        m_dialled.clear();
    }
    RasHandle Current() {
        const std::lock_guard lock(m_mutex);
        return m_current;
    }

    std::atomic<RasError> refusal = RasError::None;
    std::atomic<bool> connects = false;
    std::atomic<int> hangUps = 0;

  private:
    MessageLoop& m_loop;
    std::mutex m_mutex;
    std::uint32_t m_last = 0;
    std::vector<RasDialParams> m_dialled;
    RasHandle m_current = RasHandle::None;
    std::function<void(RasState)> m_notifier;
};

// Every host answers after 20 ms, or lets each request time out.
class ScriptedIcmp final : public IcmpEcho {
  public:
    explicit ScriptedIcmp(Runtime& runtime) : m_runtime(runtime) {}

    bool IcmpSendEcho(std::string_view address, std::span<const std::byte>, Ticks timeout) override {
        m_asked.With([&](std::vector<std::string>& asked) { asked.emplace_back(address); });
        m_runtime.Sleep(allSilent ? timeout : 20);
        return !allSilent;
    }

    std::atomic<bool> allSilent = false;

    std::vector<std::string> Asked() const { return m_asked.Get(); }
    void ForgetAsked() { m_asked.Set({}); }

  private:
    Runtime& m_runtime;
    Guarded<std::vector<std::string>> m_asked;
};

}  // namespace varkel::test
