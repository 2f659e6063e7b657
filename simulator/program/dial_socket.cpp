#include "simulator/program/dial_socket.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace varkel::sim {

namespace {

constexpr const char* socketName = "dial";

FileDescriptor OpenDirectory(const std::string& path) {
    return FileDescriptor(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// By way of an open directory: a socket's address is too short for the path of many a directory.
sockaddr_un AddressIn(const FileDescriptor& directory) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(directory.Get()) + "/" + socketName;
    static_assert(sizeof address.sun_path >= 64);
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

FileDescriptor NewSocket(int flags) {
    return FileDescriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
}

}  // namespace

std::unique_ptr<DialSocket> DialSocket::Open(const std::string& directory, DialSocketHooks hooks) {
    FileDescriptor place = OpenDirectory(directory);
    FileDescriptor listener = NewSocket(SOCK_NONBLOCK);
    if (!place || !listener) return nullptr;
    unlinkat(place.Get(), socketName, 0);
    constexpr int mostWaiting = 4;
    const sockaddr_un address = AddressIn(place);
    const bool listens =
        bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        listen(listener.Get(), mostWaiting) == 0;
    if (!listens) return nullptr;
    return std::unique_ptr<DialSocket>(
        new DialSocket(std::move(place), std::move(listener), std::move(hooks)));
}

DialSocket::~DialSocket() {
    unlinkat(m_directory.Get(), socketName, 0);
}

void DialSocket::Serve() {
    if (!m_program) {
        m_program.Reset(accept4(m_listener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        return;
    }
    constexpr std::string_view dial = "dial ";
    const auto packet = ReceiveDialPacket(m_program);
    if (!packet) {
        m_program.Reset();
        m_hooks.gone();
    } else if (packet->starts_with(dial)) {
        m_hooks.dial(std::string_view(*packet).substr(dial.size()));
    } else if (*packet == "hangup") {
        m_hooks.hangUp();
    }
}

void DialSocket::Print(std::string_view line) {
    if (m_program && !SendDialPacket(m_program, "line " + std::string(line))) m_program.Reset();
}

void DialSocket::End(int code) {
    if (m_program) SendDialPacket(m_program, "end " + std::to_string(code));
    m_program.Reset();
}

FileDescriptor ConnectDialSocket(const std::string& directory) {
    const FileDescriptor place = OpenDirectory(directory);
    FileDescriptor socket = NewSocket(0);
    if (!place || !socket) return {};
    const sockaddr_un address = AddressIn(place);
    const auto connected = Uninterrupted(
        [&] { return connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address); });
    return connected == 0 ? std::move(socket) : FileDescriptor();
}

std::optional<std::string> ReceiveDialPacket(const FileDescriptor& socket) {
    std::array<char, longestDialPacket> bytes{};
    const auto count = Uninterrupted([&] { return recv(socket.Get(), bytes.data(), bytes.size(), 0); });
    if (count <= 0) return std::nullopt;
    return std::string(bytes.data(), static_cast<std::size_t>(count));
}

bool SendDialPacket(const FileDescriptor& socket, std::string_view packet) {
    const auto size = std::min(packet.size(), longestDialPacket);
    return Uninterrupted([&] { return send(socket.Get(), packet.data(), size, MSG_NOSIGNAL); }) ==
           static_cast<ssize_t>(size);
}

}  // namespace varkel::sim
