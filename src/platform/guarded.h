// A value that several threads use, reachable only while its lock is held.
#pragma once

#include <mutex>
#include <utility>

namespace varkel {

// Nothing that waits may be called from inside With().
template <class T>
class Guarded {
  public:
    Guarded() = default;
    explicit Guarded(T value) : m_value(std::move(value)) {}

    T Get() const {
        std::lock_guard lock(m_mutex);
        return m_value;
    }

    void Set(T value) {
        std::lock_guard lock(m_mutex);
        m_value = std::move(value);
    }

    // Calls action(value) under the lock and hands its result on.
    template <class Action>
    decltype(auto) With(Action&& action) {
        std::lock_guard lock(m_mutex);
        return std::forward<Action>(action)(m_value);
    }

  private:
    mutable std::mutex m_mutex;
    T m_value{};
};

}  // namespace varkel
