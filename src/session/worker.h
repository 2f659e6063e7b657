// A thread that does jobs one after the other, so that their pauses hold up nobody else.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "platform/runtime.h"

namespace varkel {

class Worker {
  public:
    Worker(Runtime& runtime, const std::string& name);
    // Waits for the job at work; those behind it are dropped.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    // False, and the job is dropped, when `queueLimit` are waiting or no thread could be made. Any thread.
    bool Post(std::function<void()> job);

    // Sleeps within a job; false when the worker is to end. Its own thread.
    bool Pause(Ticks milliseconds) { return m_ending->Wait(milliseconds) != WaitResult::Object0; }
    bool Ending() { return !Pause(0); }

    static constexpr std::size_t queueLimit = 256;

  private:
    void Work();

    std::shared_ptr<Event> m_ending;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_jobs;
    bool m_end = false;
    std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel
