#include "session/worker.h"

#include <utility>

namespace varkel {

Worker::Worker(Runtime& runtime, const std::string& name, AtEnd atEnd)
    : m_atEnd(atEnd), m_ending(runtime.CreateEvent(EventReset::Manual)) {
    m_thread = runtime.CreateThread({.name = name, .suspended = true}, [this, &runtime] {
        // A resume that comes while a job runs is remembered, so that no job waits for the next one.
        for (;;) {
            Work();
            {
                std::lock_guard lock(m_mutex);
                if (m_end) return;
            }
            runtime.SuspendThread();
        }
    });
}

Worker::~Worker() {
    {
        std::lock_guard lock(m_mutex);
        if (m_atEnd == AtEnd::DropJobs) m_jobs.clear();
        m_end = true;
    }
    m_ending->Set();
    if (!m_thread) return;
    m_thread->ResumeThread();
    m_thread->Wait(infiniteTicks);
}

bool Worker::Post(std::function<void()> job) {
    if (!m_thread) return false;
    {
        std::lock_guard lock(m_mutex);
        if (m_end || m_jobs.size() >= queueLimit) return false;
        m_jobs.push_back(std::move(job));
    }
    m_thread->ResumeThread();
    return true;
}

void Worker::Work() {
    for (;;) {
        std::function<void()> job;
        {
            std::lock_guard lock(m_mutex);
            if (m_jobs.empty()) return;
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        job();
    }
}

}  // namespace varkel
