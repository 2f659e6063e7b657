// A dial-up service and a network that do what the test says.
#pragma once

#include <atomic>
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
        const RasError refused = refusal;
        m_line.With([&](Line& line) {
            line.dialled.push_back(params);
            handle = refused == RasError::None ? static_cast<RasHandle>(++line.last) : RasHandle::None;
            if (refused != RasError::None) return;
            line.current = handle;
            line.notifier = std::move(notifier);
        });
        if (refused != RasError::None) return refused;
        if (!connects) return RasError::None;
        for (const RasState state : {RasState::OpenPort, RasState::ConnectDevice, RasState::Connected})
            Report(state);
        return RasError::None;
    }

    void RasHangUp(RasHandle handle) override {
        ++hangUps;
        m_line.With([&](Line& line) {
            if (handle == line.current) line.current = RasHandle::None;
        });
    }

    std::string PeerAddress(RasHandle handle) override {
        return handle != RasHandle::None && handle == Current() ? "10.64.64.64" : "";
    }

    void Report(RasState state) {
        const auto notifier = m_line.Get().notifier;
        if (notifier) m_loop.Post([notifier, state] { notifier(state); });
    }

    std::vector<RasDialParams> Dialled() const { return m_line.Get().dialled; }
    void ForgetDialled() {
        m_line.With([](Line& line) { line.dialled.clear(); });
    }
    RasHandle Current() const { return m_line.Get().current; }

    std::atomic<RasError> refusal = RasError::None;
    std::atomic<bool> connects = false;
    std::atomic<int> hangUps = 0;

  private:
    struct Line {
        std::uint32_t last = 0;
        std::vector<RasDialParams> dialled;
        RasHandle current = RasHandle::None;
        std::function<void(RasState)> notifier;
    };

    MessageLoop& m_loop;
    Guarded<Line> m_line;
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
