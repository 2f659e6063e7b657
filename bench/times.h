// How long one thing takes, again and again.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace varkel {

class Times {
  public:
    using Clock = std::chrono::steady_clock;

    template <class Work>
    void Take(Work work) {
        const auto start = Clock::now();
        work();
        Add(Clock::now() - start);
    }
    void Add(Clock::duration time) {
        m_times.push_back(std::chrono::duration<double, std::milli>(time).count());
    }
    void Report(const char* what) {
        std::sort(m_times.begin(), m_times.end());
        std::printf("%s: median %.2f ms, worst %.2f ms of %zu\n", what, m_times[m_times.size() / 2],
                    m_times.back(), m_times.size());
        std::fflush(stdout);
    }

  private:
    std::vector<double> m_times;
};

}  // namespace varkel
