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

// What becomes of the jobs that still wait when the worker ends.
enum class AtEnd { DropJobs, FinishJobs };

class Worker {
  public:
    Worker(Runtime& runtime, const std::string& name, AtEnd atEnd = AtEnd::DropJobs);
    // Waits for the job at work; those behind it are dropped or finished.
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

    const AtEnd m_atEnd;
    std::shared_ptr<Event> m_ending;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_jobs;
    bool m_end = false;
    std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel
