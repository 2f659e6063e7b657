// Where a backend reports what went wrong inside it.
#pragma once

#include <functional>
#include <string_view>

namespace varkel {

// Called with one sentence, on any thread; it must not wait. An empty one is allowed.
using ProblemSink = std::function<void(std::string_view problem)>;

inline void Report(const ProblemSink& sink, std::string_view problem) {
    if (sink) sink(problem);
}

}  // namespace varkel
