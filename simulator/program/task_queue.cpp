#include "simulator/program/task_queue.h"

#include <utility>

namespace varkel::sim {

bool TaskQueue::Post(std::function<void()> work) {
    {
        std::lock_guard lock(m_mutex);
        if (m_work.size() >= limit) return false;
        m_work.push_back(std::move(work));
    }
    m_wake.Signal();
    return true;
}

void TaskQueue::Run() {
    m_wake.Clear();
    std::vector<std::function<void()>> work;
    {
        std::lock_guard lock(m_mutex);
        work.swap(m_work);
    }
    for (const auto& each : work)
        each();
}

}  // namespace varkel::sim
