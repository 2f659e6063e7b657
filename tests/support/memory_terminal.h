// A terminal whose typing is done by the test.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/message_loop.h"
#include "platform/terminal.h"

namespace varkel::test {

class MemoryTerminal final : public Terminal {
  public:
    explicit MemoryTerminal(MessageLoop& loop) : m_loop(loop) {}

    void PrintLine(std::string_view line) override {
        std::lock_guard lock(m_mutex);
        m_lines.emplace_back(line);
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
        std::lock_guard lock(m_mutex);
        return std::exchange(m_lines, {});
    }

  private:
    MessageLoop& m_loop;
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
    std::function<void(std::string)> m_onLine;
    std::function<void()> m_onEnd;
};

}  // namespace varkel::test
