#include "simulator/program/screen.h"

#include <string>
#include <unistd.h>

#include "platform/linux/file_descriptor.h"

namespace varkel::sim {

namespace {

// Nobody to complain to when it fails.
void Put(int descriptor, std::string_view bytes) {
    static_cast<void>(WriteAll(descriptor, bytes));
}

}  // namespace

void Screen::Program(int descriptor, std::string_view bytes) {
    if (bytes.empty()) return;
    Put(descriptor, bytes);
    m_midLine = bytes.back() != '\n';
}

void Screen::Say(std::string_view text) {
    std::string lines = m_midLine ? "\n" : "";
    m_midLine = false;
    while (true) {
        const std::size_t end = text.find('\n');
        lines += "sim| " + std::string(text.substr(0, end)) + "\n";
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    Put(STDOUT_FILENO, lines);
}

}  // namespace varkel::sim
