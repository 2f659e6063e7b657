// What a backend under test reports, from any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/guarded.h"
#include "platform/linux/problem_sink.h"

namespace varkel::test {

class ProblemList {
  public:
    ProblemSink Sink() {
        return [this](std::string_view problem) {
            m_problems.With([&](auto& all) { all.emplace_back(problem); });
        };
    }
    std::vector<std::string> All() const { return m_problems.Get(); }
    void Clear() { m_problems.Set({}); }

  private:
    Guarded<std::vector<std::string>> m_problems;
};

}  // namespace varkel::test
