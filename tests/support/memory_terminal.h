// A terminal whose typing is done by the test.
#pragma once

#include <string>
#include <vector>

#include "platform/guarded.h"
#include "platform/message_loop.h"
#include "platform/terminal.h"

namespace varkel::test {

class MemoryTerminal final : public Terminal {
  public:
    explicit MemoryTerminal(MessageLoop& loop) : m_loop(loop) {}

    void PrintLine(std::string_view line) override {
        m_lines.With([&](auto& lines) { lines.emplace_back(line); });
    }
    void Listen(std::function<void(std::string)> onLine, std::function<void()> onEnd) override {
        m_onLine = std::move(onLine);
        m_onEnd = std::move(onEnd);
    }

    void Type(std::string line) {
        m_loop.Post([this, line = std::move(line)] { m_onLine(line); });
    }
    void End() {
        m_loop.Post([this] { m_onEnd(); });
    }
    std::vector<std::string> TakeLines() {
        return m_lines.With([](auto& lines) { return std::exchange(lines, {}); });
    }

  private:
    MessageLoop& m_loop;
    Guarded<std::vector<std::string>> m_lines;
    std::function<void(std::string)> m_onLine;
    std::function<void()> m_onEnd;
};

}  // namespace varkel::test
