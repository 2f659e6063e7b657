// The timers of one dialog or control, numbered as it likes; they end with it. Dialog thread.
#pragma once

#include <functional>
#include <map>

#include "platform/message_loop.h"

namespace varkel {

// Gives each timer of the desktop a number of its own in the message loop.
class TimerNumbers {
  public:
    TimerId Next() { return ++m_last; }

  private:
    TimerId m_last = 1'000'000;  // the session's timers have small numbers
};

class Timers {
  public:
    Timers(MessageLoop& loop, TimerNumbers& numbers) : m_loop(loop), m_numbers(numbers) {}
    ~Timers() { KillAll(); }
    Timers(const Timers&) = delete;
    Timers& operator=(const Timers&) = delete;

    // Runs `handler` every `period` ms until it is killed; replaces a timer of the same id.
    void Set(int id, Ticks period, std::function<void()> handler) {
        m_loop.SetTimer(NumberOf(id), period, std::move(handler));
    }
    // Runs `handler` once.
    void SetOnce(int id, Ticks delay, std::function<void()> handler) {
        m_loop.SetTimer(NumberOf(id), delay, [this, id, handler = std::move(handler)] {
            Kill(id);
            handler();
        });
    }
    void Kill(int id) {
        if (const auto found = m_ids.find(id); found != m_ids.end()) m_loop.KillTimer(found->second);
    }
    void KillAll() {
        for (const auto& [id, number] : m_ids)
            m_loop.KillTimer(number);
    }

  private:
    TimerId NumberOf(int id) {
        auto& number = m_ids[id];
        if (number == 0) number = m_numbers.Next();
        return number;
    }

    MessageLoop& m_loop;
    TimerNumbers& m_numbers;
    std::map<int, TimerId> m_ids;
};

}  // namespace varkel
