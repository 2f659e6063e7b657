#include "platform/linux/icmp_socket.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <vector>

#include "platform/linux/file_descriptor.h"
#include "platform/linux/linux_runtime.h"

namespace varkel {
namespace {

constexpr Ticks longEnough = 20'000;

std::vector<std::byte> Stars(std::size_t count) {
    return std::vector(count, std::byte{'*'});
}

bool SystemAllowsEcho() {
    const FileDescriptor datagram(socket(AF_INET, SOCK_DGRAM, IPPROTO_ICMP));
    const FileDescriptor raw(socket(AF_INET, SOCK_RAW, IPPROTO_ICMP));
    return datagram || raw;
}

TEST(IcmpSocketTest, HearsHostsThatAnswer) {
    if (!SystemAllowsEcho()) GTEST_SKIP() << "the system lets nobody send ICMP echo requests";
    IcmpSocket icmp;
    for (const std::size_t size : {std::size_t{64}, std::size_t{0}, std::size_t{7}, IcmpSocket::mostData})
        EXPECT_TRUE(icmp.IcmpSendEcho("127.0.0.1", Stars(size), longEnough)) << size;
    // Many at once: each takes its own reply among everybody's.
    std::vector<std::jthread> threads;
    for (int i = 1; i <= 8; ++i) {
        threads.emplace_back([&icmp, address = "127.0.0." + std::to_string(i)] {
            for (int round = 0; round < 20; ++round)
                EXPECT_TRUE(icmp.IcmpSendEcho(address, Stars(64), longEnough));
        });
    }
}

TEST(IcmpSocketTest, RefusesWhatIsNoAddressInNumbers) {
    IcmpSocket icmp;
    for (const char* const address :
         {"", "localhost", "127.0.0", "127.0.0.256", "::1", "127.0.0.1 ", "1,2.3.4"})
        EXPECT_FALSE(icmp.IcmpSendEcho(address, Stars(64), longEnough)) << address;
    EXPECT_FALSE(icmp.IcmpSendEcho("127.0.0.1", Stars(IcmpSocket::mostData + 1), longEnough));
}

TEST(IcmpSocketTest, WaitsNoLongerThanItIsTold) {
    LinuxRuntime runtime;
    IcmpSocket icmp;
    // A reserved address (RFC 1112, 4), which no host has; systems that know it say so at once.
    const Ticks before = runtime.GetTickCount();
    EXPECT_FALSE(icmp.IcmpSendEcho("240.0.0.1", Stars(64), 50));
    EXPECT_LT(TicksSince(runtime.GetTickCount(), before), 10'000u);
    EXPECT_FALSE(icmp.IcmpSendEcho("127.0.0.1", Stars(64), 0)) << "no time, no answer";
}

}  // namespace
}  // namespace varkel
