#include "platform/linux/tty_serial_port.h"

#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include "platform/linux/file_descriptor.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

constexpr Ticks longEnough = 20'000;

// An open port over a pseudo-terminal; the test is the modem at the other end.
class TtySerialPortTest : public testing::Test {
  protected:
    TtySerialPortTest() { Connect(); }

    void Connect() {
        int ends[2];
        char name[64];
        ASSERT_EQ(openpty(&ends[0], &ends[1], name, nullptr, nullptr), 0);
        modem.Reset(ends[0]);
        close(ends[1]);
        fcntl(modem.Get(), F_SETFD, FD_CLOEXEC);
        path = name;
        Open();
    }

    void Open() {
        device = port.CreateFile("COM7:");
        EXPECT_NE(device, CommHandle::Invalid);
        EXPECT_TRUE(port.SetCommMask(device, EV_RXCHAR));
        // A write has no limit.
        EXPECT_TRUE(port.SetCommTimeouts(device, {0xFFFFFFFF, 0, 0, 0, 0}));
    }

    // The event that a wait ended with; nothing when it failed.
    std::optional<std::uint32_t> Wait() {
        std::uint32_t event = 99;
        return port.WaitCommEvent(device, event) ? std::optional(event) : std::nullopt;
    }

    std::string TakeChunk() {
        std::uint32_t errors = 0;
        std::size_t queued = 0;
        EXPECT_TRUE(port.ClearCommError(device, errors, queued));
        EXPECT_EQ(errors, 0u);
        std::string chunk(queued, '\0');
        std::size_t read = 0;
        EXPECT_TRUE(port.ReadFile(device, chunk, read));
        EXPECT_EQ(read, queued);
        return chunk;
    }

    std::string AwaitChunk() {
        EXPECT_EQ(Wait(), EV_RXCHAR);
        return TakeChunk();
    }

    void Feed(std::string_view bytes) { ASSERT_TRUE(WriteAll(modem.Get(), bytes)); }

    // Everything the port sends until `size` bytes have come.
    std::string Receive(std::size_t size) {
        std::string bytes;
        while (bytes.size() < size) {
            char buffer[4096];
            const ssize_t count = read(modem.Get(), buffer, sizeof buffer);
            if (count <= 0) break;
            bytes.append(buffer, static_cast<std::size_t>(count));
        }
        return bytes;
    }

    // A thread that writes more than the tty takes, until that fails.
    std::shared_ptr<Thread> StartToWrite() {
        return runtime.CreateThread({"writer"}, [this] {
            std::size_t written = 0;
            EXPECT_FALSE(port.WriteFile(device, std::string(std::size_t{256} * 1024, 'f'), written));
        });
    }

    LinuxRuntime runtime;
    FileDescriptor modem;
    std::string path;
    std::atomic<int> vanished = 0;
    TtySerialPort port{runtime,
                       [this](std::string_view name) { return name == "COM7:" ? path : std::string(); },
                       [this](std::string_view name) {
                           EXPECT_EQ(name, "COM7:");
                           ++vanished;
                       }};
    CommHandle device = CommHandle::Invalid;
};

TEST_F(TtySerialPortTest, OpensATtyForItselfAlone) {
    EXPECT_EQ(port.CreateFile("COM7:"), CommHandle::Invalid) << "not shared";
    const CommHandle first = device;
    EXPECT_EQ(port.CloseHandle(first), 0);
    EXPECT_NE(port.CloseHandle(first), 0);
    const auto descriptors = test::OpenDescriptors();
    const int inheritable = test::InheritableDescriptors();
    Open();
    EXPECT_EQ(test::InheritableDescriptors(), inheritable);
    EXPECT_NE(first, device) << "handles are never given twice";
    EXPECT_FALSE(port.SetCommMask(first, 0));
    port.CloseHandle(device);
    EXPECT_EQ(port.CreateFile("COM1:"), CommHandle::Invalid);
    for (const char* const none : {"/dev/null", "/nowhere"}) {
        path = none;
        EXPECT_EQ(port.CreateFile("COM7:"), CommHandle::Invalid);
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

TEST_F(TtySerialPortTest, SetsTheLineAsTheControlBlockSays) {
    Dcb state;
    ASSERT_TRUE(port.GetCommState(device, state));
    state.BaudRate = 115200;
    state.ByteSize = 8;
    state.fDtrControl = state.fRtsControl = true;
    ASSERT_TRUE(port.SetCommState(device, state));
    termios line{};
    ASSERT_EQ(tcgetattr(modem.Get(), &line), 0);
    EXPECT_EQ(cfgetospeed(&line), speed_t{B115200});
    EXPECT_EQ(line.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), tcflag_t{CS8});
    EXPECT_NE(line.c_cflag & CLOCAL, 0u);
    EXPECT_EQ(line.c_lflag & (ECHO | ICANON | ISIG), 0u);
    EXPECT_EQ(line.c_iflag & (ICRNL | IXON | IXOFF), 0u);
    Dcb read;
    ASSERT_TRUE(port.GetCommState(device, read));
    EXPECT_EQ(read.BaudRate, 115200u);
    EXPECT_TRUE(read.fDtrControl);

    const std::pair<const char*, void (*)(Dcb&)> faults[] = {
        {"speed", [](Dcb& dcb) { dcb.BaudRate = 12345; }},
        {"bits", [](Dcb& dcb) { dcb.ByteSize = 9; }},
        {"parity", [](Dcb& dcb) { dcb.Parity = 5; }},
        {"a frame that this tty cannot do", [](Dcb& dcb) { dcb.ByteSize = 7; }},
        {"stop bits", [](Dcb& dcb) { dcb.StopBits = 1; }},
    };
    for (const auto& [name, spoil] : faults) {
        Dcb spoilt = state;
        spoil(spoilt);
        EXPECT_FALSE(port.SetCommState(device, spoilt)) << name;
    }
}

TEST_F(TtySerialPortTest, ReportsAnAnswerAsOneChunkHoweverItArrives) {
    const std::string answer("\r\n+CSQ: 18,99\0\xFF\r\n\r\nOK\r\n", 23);
    Feed(answer);
    EXPECT_EQ(AwaitChunk(), answer);
    for (const char c : answer)
        Feed({&c, 1});
    std::string received;
    while (received.size() < answer.size())
        received += AwaitChunk();
    EXPECT_EQ(received, answer);
}

TEST_F(TtySerialPortTest, TakesBurstsWholeInChunksThatEndWithALine) {
    std::string burst;
    for (int i = 0; i < 163; ++i)
        burst += "+CPBR: " + std::to_string(100 + i) + ",\"0123456789\"\r\n";
    burst += std::string(19, 'x') + "\r\n";
    ASSERT_EQ(burst.size(), 4096u);
    const auto feeder = runtime.CreateThread({"feeder"}, [&] { Feed(burst); });
    std::string received;
    while (received.size() < burst.size()) {
        const std::string chunk = AwaitChunk();
        ASSERT_FALSE(chunk.empty());
        EXPECT_LE(chunk.size(), 1024u);
        EXPECT_TRUE(chunk.ends_with("\r\n")) << received.size();
        received += chunk;
    }
    EXPECT_EQ(received, burst);
    feeder->Wait(infiniteTicks);
}

TEST_F(TtySerialPortTest, AMaskOfNoneEndsExactlyOneWait) {
    // Before the wait, and with another mask set in between.
    port.SetCommMask(device, 0);
    port.SetCommMask(device, EV_RXCHAR);
    EXPECT_EQ(Wait(), 0u);

    // During a wait; the next one waits for data again.
    std::atomic<int> waits = 0;
    const auto reader = runtime.CreateThread({"reader"}, [&] {
        for (const std::uint32_t event : {0u, EV_RXCHAR}) {
            EXPECT_EQ(Wait(), event);
            ++waits;
        }
    });
    EXPECT_EQ(reader->Wait(30), WaitResult::Timeout);
    port.SetCommMask(device, 0);
    port.SetCommMask(device, EV_RXCHAR);
    EXPECT_EQ(reader->Wait(50), WaitResult::Timeout);
    EXPECT_EQ(waits, 1);
    Feed("x");
    EXPECT_EQ(reader->Wait(longEnough), WaitResult::Object0);
}

TEST_F(TtySerialPortTest, WaitsWithoutWakingUp) {
    std::atomic<long> wakeUps = -1;
    const auto reader = runtime.CreateThread({"reader"}, [&] {
        Wait();
        wakeUps = test::CostOfThisThread().wakeUps;
    });
    EXPECT_EQ(reader->Wait(300), WaitResult::Timeout);
    port.SetCommMask(device, 0);
    EXPECT_EQ(reader->Wait(longEnough), WaitResult::Object0);
    EXPECT_LT(wakeUps, 10);
}

TEST_F(TtySerialPortTest, PurgesWhatIsQueuedInBothPlaces) {
    Feed("queued");
    EXPECT_EQ(Wait(), EV_RXCHAR);
    Feed("in the tty");
    pollfd readable{open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK), POLLIN, 0};
    poll(&readable, 1, 1000);
    close(readable.fd);
    EXPECT_TRUE(port.PurgeComm(device, PURGE_TXCLEAR | PURGE_RXCLEAR));
    EXPECT_EQ(TakeChunk(), "");
    Feed("fresh");
    EXPECT_EQ(AwaitChunk(), "fresh");
}

TEST_F(TtySerialPortTest, WritesWithinItsTimeoutAndReportsWhatWasTaken) {
    port.SetCommTimeouts(device, {0xFFFFFFFF, 0, 0, 0, 100});
    std::size_t written = 0;
    EXPECT_TRUE(port.WriteFile(device, "AT\r", written));
    EXPECT_EQ(written, 3u);
    EXPECT_EQ(Receive(3), "AT\r");

    // Nobody reads: a pseudo-terminal takes some KiB and then nothing.
    const std::string flood(std::size_t{64} * 1024, 'f');
    EXPECT_TRUE(port.WriteFile(device, flood, written));
    EXPECT_GT(written, 0u);
    EXPECT_LT(written, flood.size());
    std::size_t more = 1;
    Ticks start = 0;
    for (; more != 0; written += more) {
        start = runtime.GetTickCount();
        ASSERT_TRUE(port.WriteFile(device, "x", more));
    }
    EXPECT_GE(TicksSince(runtime.GetTickCount(), start), 100u);

    // A reader lets the writer go on.
    port.SetCommTimeouts(device, {0xFFFFFFFF, 0, 0, 10, 10'000});
    const auto drain = runtime.CreateThread({"drain"}, [&] { Receive(written + flood.size()); });
    EXPECT_TRUE(port.WriteFile(device, flood, more));
    EXPECT_EQ(more, flood.size());
    EXPECT_EQ(drain->Wait(longEnough), WaitResult::Object0);
}

TEST_F(TtySerialPortTest, ClosingEndsEveryCallOnOtherThreads) {
    port.CloseHandle(device);
    const auto descriptors = test::OpenDescriptors();
    for (int round = 0; round < 20; ++round) {
        Open();
        const auto reader = runtime.CreateThread({"reader"}, [this] {
            char byte = 0;
            std::size_t count = 0;
            while (Wait() && port.ReadFile(device, {&byte, 1}, count)) {
            }
        });
        const auto writer = StartToWrite();
        Feed("some input");
        runtime.Sleep(static_cast<Ticks>(round % 5));
        port.CloseHandle(device);
        ASSERT_EQ(reader->Wait(longEnough), WaitResult::Object0);
        ASSERT_EQ(writer->Wait(longEnough), WaitResult::Object0);
        EXPECT_EQ(Wait(), std::nullopt);
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_EQ(vanished, 0);
}

TEST_F(TtySerialPortTest, AVanishedDeviceIsNoticedOnceAndStaysSilent) {
    const auto reader = runtime.CreateThread({"reader"}, [this] {
        EXPECT_EQ(Wait(), 0u) << "bytes that came just before are not reported";
        EXPECT_LT(test::CostOfThisThread().wakeUps, 20);
        EXPECT_LT(test::CostOfThisThread().cpuMilliseconds, 100) << "no busy loop";
    });
    EXPECT_EQ(reader->Wait(20), WaitResult::Timeout);
    modem.Reset();
    EXPECT_EQ(reader->Wait(200), WaitResult::Timeout);
    EXPECT_EQ(vanished, 1);
    std::size_t written = 99;
    EXPECT_FALSE(port.WriteFile(device, "AT\r", written));
    EXPECT_EQ(written, 0u);
    port.SetCommMask(device, 0);
    EXPECT_EQ(reader->Wait(longEnough), WaitResult::Object0);
    EXPECT_EQ(vanished, 1);
    port.CloseHandle(device);

    Connect();
    Feed("back");
    EXPECT_EQ(AwaitChunk(), "back");
}

TEST_F(TtySerialPortTest, AWriterNoticesAVanishedDeviceToo) {
    const auto writer = StartToWrite();
    EXPECT_EQ(writer->Wait(20), WaitResult::Timeout);
    modem.Reset();
    EXPECT_EQ(writer->Wait(longEnough), WaitResult::Object0);
    EXPECT_EQ(vanished, 1);
    port.SetCommMask(device, 0);
    EXPECT_EQ(Wait(), 0u);
}

}  // namespace
}  // namespace varkel
