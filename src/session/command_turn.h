// Keeps the commands that run by themselves apart from the requests whose outcome is told by the next final
// result: the "OK" of a poll must not establish a call.
#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "modem/at_channel.h"
#include "platform/runtime.h"
#include "session/open_waits.h"

namespace varkel {

class CommandTurn {
  public:
    CommandTurn(Runtime& runtime, CATChannel& at) : m_runtime(runtime), m_at(at) {}

    // For the poll and the worker: sends unless a dial, hang-up, message or USSD request is under way. False
    // when nothing was sent; then it is tried again later. Returns at once. Any thread.
    template <class Send>
    [[nodiscard]] bool TryQuietly(Send send) {
        if (m_taken.exchange(true)) return false;
        const bool free = !m_at.OneShotPending();
        if (free) send();
        m_taken = false;
        return free;
    }

    // The same, waiting until it can be sent; false when the waits were cancelled before.
    template <class Send>
    [[nodiscard]] bool AwaitQuietly(OpenWaits& waits, Send send) {
        while (!TryQuietly(send)) {
            if (!waits.Pause(slice)) return false;
        }
        return true;
    }

    // For such a request: waits up to a second for the answer to the last command, then lets `send` set its
    // one-shot and send. Any thread but the read thread.
    template <class Send>
    void OneShot(Send send) {
        const Ticks start = m_runtime.GetTickCount();
        const auto inTime = [&] { return TicksSince(m_runtime.GetTickCount(), start) < longestAnswer; };
        while (m_at.AnswerOutstanding(longestAnswer) && inTime())
            m_runtime.Sleep(slice);
        while (m_taken.exchange(true))
            m_runtime.Sleep(slice);
        send();
        m_taken = false;
        if (m_onOneShot) m_onOneShot();
    }

    // Hears of each request, so that none waits for ever. Before the first one.
    void SetWatch(std::function<void()> onOneShot) { m_onOneShot = std::move(onOneShot); }

  private:
    static constexpr Ticks longestAnswer = 1000;
    static constexpr Ticks slice = 10;

    Runtime& m_runtime;
    CATChannel& m_at;
    std::function<void()> m_onOneShot;
    std::atomic<bool> m_taken = false;  // somebody is sending
};

}  // namespace varkel
