// The terminal on standard input and output.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "platform/linux/file_descriptor.h"
#include "platform/message_loop.h"
#include "platform/terminal.h"

namespace varkel {

// Control characters in a line, which could come from outside and drive the terminal, are printed as ".". A
// line that nobody takes for a second is dropped, and so are those after it until output flows again.
class ConsoleTerminal final : public Terminal {
  public:
    // The descriptors stay the caller's.
    explicit ConsoleTerminal(MessageLoop& loop, int input = 0, int output = 1);
    // What is typed from now on is not read.
    ~ConsoleTerminal() override;

    void PrintLine(std::string_view line) override;
    // Once. A line that is not ended by a line feed counts at the end of the input.
    void Listen(std::function<void(std::string)> onLine, std::function<void()> onEnd) override;

    // Lines that the dialog thread has not taken; further ones wait in the system's own buffer.
    static constexpr std::size_t mostWaiting = 64;

  private:
    // What the posted lines still need when the terminal has gone.
    struct Listener {
        std::function<void(std::string)> onLine;
        std::function<void()> onEnd;
        std::mutex mutex;
        std::condition_variable taken;
        std::size_t waiting = 0;
        bool closed = false;
    };

    void ReadLines();
    // Adds typed bytes to `line` and hands over every line that they end; false when the terminal closes.
    bool Take(std::string_view bytes, std::string& line);
    bool PostLine(std::string line);
    bool PostInOrder(std::function<void()> work);

    MessageLoop& m_loop;
    const int m_input;
    const int m_output;
    std::mutex m_printing;
    bool m_stuck = false;
    WakeUp m_stop;
    std::shared_ptr<Listener> m_listener;
    std::thread m_thread;
};

}  // namespace varkel
