// Work that other threads hand to the main thread.
#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "platform/linux/file_descriptor.h"

namespace varkel::sim {

class TaskQueue {
  public:
    // False when `limit` pieces wait already. Any thread.
    bool Post(std::function<void()> work);
    // Readable while work waits.
    int Descriptor() const { return m_wake.Get(); }
    // Does what waits. Main thread.
    void Run();

    static constexpr std::size_t limit = 1024;

  private:
    WakeUp m_wake;
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_work;
};

}  // namespace varkel::sim
