#include "platform/linux/icmp_socket.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <netinet/in.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/file_descriptor.h"

namespace varkel {

namespace {

using Clock = std::chrono::steady_clock;

// RFC 792: type, code, checksum, identifier, sequence number, data; numbers in network order.
constexpr std::byte echoReply{0};
constexpr std::byte echoRequest{8};
constexpr std::size_t headerSize = 8;

struct Socket {
    FileDescriptor descriptor;
    bool raw = false;
};

Socket OpenSocket() {
    constexpr int flags = SOCK_CLOEXEC | SOCK_NONBLOCK;
    FileDescriptor datagram(socket(AF_INET, SOCK_DGRAM | flags, IPPROTO_ICMP));
    if (datagram) return {std::move(datagram), false};
    return {FileDescriptor(socket(AF_INET, SOCK_RAW | flags, IPPROTO_ICMP)), true};
}

// The identifier of requests: the system gives a datagram socket one as its port.
std::uint16_t IdentifierOf(const Socket& socket) {
    sockaddr_in own{};
    socklen_t size = sizeof own;
    const bool named = getsockname(socket.descriptor.Get(), reinterpret_cast<sockaddr*>(&own), &size) == 0;
    return socket.raw || !named ? static_cast<std::uint16_t>(getpid()) : ntohs(own.sin_port);
}

void PutNumber(std::vector<std::byte>& packet, std::size_t at, std::uint16_t number) {
    packet[at] = static_cast<std::byte>(number >> 8);
    packet[at + 1] = static_cast<std::byte>(number & 0xFF);
}

std::uint16_t Checksum(std::span<const std::byte> packet) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < packet.size(); ++i)
        sum += std::to_integer<std::uint32_t>(packet[i]) << (i % 2 == 0 ? 8 : 0);
    while (sum > 0xFFFF)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<std::uint16_t>(~sum);
}

std::vector<std::byte> EchoRequest(std::uint16_t identifier, std::uint16_t sequence,
                                   std::span<const std::byte> data) {
    std::vector<std::byte> packet(headerSize);
    packet[0] = echoRequest;
    PutNumber(packet, 4, identifier);
    PutNumber(packet, 6, sequence);
    packet.insert(packet.end(), data.begin(), data.end());
    PutNumber(packet, 2, Checksum(packet));
    return packet;
}

// A raw socket hands over the IP header as well, and everybody's ICMP packets.
bool Answers(std::span<const std::byte> received, bool raw, std::span<const std::byte> request) {
    if (raw) {
        constexpr std::size_t word = 4;
        const std::size_t ipHeader =
            received.empty() ? 0 : std::to_integer<std::size_t>(received[0] & std::byte{15}) * word;
        if (ipHeader > received.size()) return false;
        received = received.subspan(ipHeader);
    }
    if (received.size() != request.size() || received[0] != echoReply || received[1] != std::byte{0})
        return false;
    constexpr std::size_t behindChecksum = 4;
    return std::equal(received.begin() + behindChecksum, received.end(), request.begin() + behindChecksum);
}

// One packet; nothing when it came from somebody else than `host`, or when there was none.
std::optional<std::span<const std::byte>> Receive(const Socket& socket, const in_addr& host,
                                                  std::span<std::byte> buffer) {
    sockaddr_in from{};
    socklen_t size = sizeof from;
    const auto count = Uninterrupted([&] {
        return recvfrom(socket.descriptor.Get(), buffer.data(), buffer.size(), 0,
                        reinterpret_cast<sockaddr*>(&from), &size);
    });
    if (count < 0 || from.sin_addr.s_addr != host.s_addr) return std::nullopt;
    return buffer.first(static_cast<std::size_t>(count));
}

bool AwaitAnswer(const Socket& socket, const in_addr& host, std::span<const std::byte> request,
                 Clock::time_point deadline) {
    constexpr std::size_t largestIpHeader = 60;
    std::array<std::byte, largestIpHeader + headerSize + IcmpSocket::mostData + 1> buffer{};
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
        pollfd ready{socket.descriptor.Get(), POLLIN, 0};
        if (left.count() <= 0 || !Poll({&ready, 1}, left)) return false;
        // The system has been told that the host is out of reach.
        if (ready.revents & POLLERR) return false;
        const auto received = Receive(socket, host, buffer);
        if (received && Answers(*received, socket.raw, request)) return true;
    }
}

}  // namespace

bool IcmpSocket::IcmpSendEcho(std::string_view address, std::span<const std::byte> data, Ticks timeout) {
    static std::atomic<std::uint16_t> lastSequence = 0;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeout);
    sockaddr_in host{};
    host.sin_family = AF_INET;
    if (inet_pton(AF_INET, std::string(address).c_str(), &host.sin_addr) != 1) return false;
    const Socket socket = OpenSocket();
    if (!socket.descriptor || data.size() > mostData) return false;
    const int descriptor = socket.descriptor.Get();
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&host), sizeof host) != 0) return false;

    const auto request = EchoRequest(IdentifierOf(socket), ++lastSequence, data);
    const auto sent = Uninterrupted([&] { return send(descriptor, request.data(), request.size(), 0); });
    return sent == static_cast<ssize_t>(request.size()) &&
           AwaitAnswer(socket, host.sin_addr, request, deadline);
}

}  // namespace varkel
