// The terminal of a program that has no window.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace varkel {

class Terminal {
  public:
    virtual ~Terminal() = default;
    // One line, written whole. Any thread.
    virtual void PrintLine(std::string_view line) = 0;
    // From now on every typed line arrives on the dialog thread, without its line end, cut at `longestLine`
    // bytes; at the end of the input `onEnd` is called once.
    virtual void Listen(std::function<void(std::string)> onLine, std::function<void()> onEnd) = 0;

    static constexpr std::size_t longestLine = 1024;
};

}  // namespace varkel
