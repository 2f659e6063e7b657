#include "simulator/program/pty.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace varkel::sim {

namespace {

// The link changes its target in one step: nobody ever finds it half made.
bool Point(const std::string& link, const char* target) {
    const std::string made = link + ".new";
    unlink(made.c_str());
    return symlink(target, made.c_str()) == 0 && rename(made.c_str(), link.c_str()) == 0;
}

}  // namespace

std::unique_ptr<Pty> Pty::Open(const std::string& link) {
    FileDescriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    if (!master || grantpt(master.Get()) != 0 || unlockpt(master.Get()) != 0) return nullptr;
    std::array<char, 64> name{};
    if (ptsname_r(master.Get(), name.data(), name.size()) != 0) return nullptr;
    FileDescriptor slave(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios settings{};
    if (!slave || tcgetattr(slave.Get(), &settings) != 0) return nullptr;
    cfmakeraw(&settings);
    if (tcsetattr(slave.Get(), TCSANOW, &settings) != 0 || !Point(link, name.data())) return nullptr;
    return std::unique_ptr<Pty>(new Pty(std::move(master), std::move(slave), link));
}

Pty::~Pty() {
    unlink(m_link.c_str());
}

std::string Pty::Read() {
    // A program opens the device for itself alone; as the device is never closed here, the mark would outlive
    // the program that set it.
    ioctl(m_slave.Get(), TIOCNXCL);
    std::array<char, 4096> buffer{};
    const ssize_t count = Uninterrupted([&] { return read(m_master.Get(), buffer.data(), buffer.size()); });
    return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

void Pty::Write(std::string_view bytes) {
    if (m_waiting.size() + bytes.size() > mostWaiting) return;
    m_waiting += bytes;
    Flush();
}

void Pty::Flush() {
    while (!m_waiting.empty()) {
        const ssize_t count =
            Uninterrupted([&] { return write(m_master.Get(), m_waiting.data(), m_waiting.size()); });
        if (count <= 0) return;
        m_waiting.erase(0, static_cast<std::size_t>(count));
    }
}

}  // namespace varkel::sim
