#include "platform/linux/console_terminal.h"

#include <algorithm>
#include <chrono>
#include <pthread.h>
#include <unistd.h>
#include <utility>

#include "platform/text.h"

namespace varkel {

namespace {

// Text that leaves the terminal as it is: no control character of ASCII, none of the C1 set in UTF-8.
std::string Printable(std::string_view line) {
    std::string text(line);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
        if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) text[i] = text[i + 1] = '.';
        if ((byte < 0x20 && byte != '\t') || byte == 0x7F) text[i] = '.';
    }
    return text;
}

}  // namespace

ConsoleTerminal::ConsoleTerminal(MessageLoop& loop, int input, int output)
    : m_loop(loop), m_input(input), m_output(output) {}

ConsoleTerminal::~ConsoleTerminal() {
    if (!m_listener) return;
    {
        std::lock_guard lock(m_listener->mutex);
        m_listener->closed = true;
    }
    m_listener->taken.notify_all();
    m_stop.Signal();
    m_thread.join();
}

void ConsoleTerminal::PrintLine(std::string_view line) {
    const std::string text = Printable(line) + "\n";
    std::lock_guard lock(m_printing);
    for (std::string_view rest = text; !rest.empty();) {
        pollfd writable{m_output, POLLOUT, 0};
        const auto patience = m_stuck ? std::chrono::milliseconds(0) : std::chrono::milliseconds(1000);
        m_stuck = !Poll({&writable, 1}, patience);
        if (m_stuck) return;
        // A pipe or terminal that polls writable takes this much without blocking.
        const std::size_t piece = std::min<std::size_t>(rest.size(), 512);
        const ssize_t count = Uninterrupted([&] { return write(m_output, rest.data(), piece); });
        if (count < 0 && errno != EAGAIN) return;
        rest.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

void ConsoleTerminal::Listen(std::function<void(std::string)> onLine, std::function<void()> onEnd) {
    m_listener = std::make_shared<Listener>();
    m_listener->onLine = std::move(onLine);
    m_listener->onEnd = std::move(onEnd);
    m_thread = std::thread([this] {
        pthread_setname_np(pthread_self(), "terminal");
        ReadLines();
    });
}

void ConsoleTerminal::ReadLines() {
    std::string line;
    for (;;) {
        pollfd sources[] = {{m_stop.Get(), POLLIN, 0}, {m_input, POLLIN, 0}};
        Poll(sources, forever);
        if (sources[0].revents != 0) return;
        char bytes[1024];
        const ssize_t count = Uninterrupted([&] { return read(m_input, bytes, sizeof bytes); });
        if (count < 0 && errno == EAGAIN) continue;
        if (count <= 0) break;
        if (!Take({bytes, static_cast<std::size_t>(count)}, line)) return;
    }
    if (!line.empty() && !PostLine(std::move(line))) return;
    PostInOrder([listener = m_listener] { listener->onEnd(); });
}

bool ConsoleTerminal::Take(std::string_view bytes, std::string& line) {
    for (const char c : bytes) {
        if (c == '\n') {
            if (!PostLine(std::exchange(line, {}))) return false;
        } else if (line.size() <= longestLine) {
            line += c;  // one byte more than is kept, so that the cut knows where a character ends
        }
    }
    return true;
}

bool ConsoleTerminal::PostLine(std::string line) {
    if (line.ends_with('\r')) line.pop_back();
    line = CutUtf8(line, longestLine);
    return PostInOrder([listener = m_listener, line = std::move(line)] { listener->onLine(line); });
}

bool ConsoleTerminal::PostInOrder(std::function<void()> work) {
    const auto listener = m_listener;
    const auto counted = [listener, work = std::move(work)] {
        {
            std::lock_guard lock(listener->mutex);
            if (listener->closed) return;
            --listener->waiting;
        }
        listener->taken.notify_one();
        work();
    };
    std::unique_lock lock(listener->mutex);
    for (;;) {
        listener->taken.wait(lock, [&] { return listener->closed || listener->waiting < mostWaiting; });
        if (listener->closed) return false;
        ++listener->waiting;
        lock.unlock();
        if (m_loop.Post(counted)) return true;
        lock.lock();
        --listener->waiting;
        // The loop is flooded by others: a typed line is worth waiting for.
        listener->taken.wait_for(lock, std::chrono::milliseconds(50));
    }
}

}  // namespace varkel
