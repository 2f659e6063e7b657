#include "modem/serial_link.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/modem/channel_parts.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;

struct LinkTest : testing::Test, VirtualChannel {
    LinkTest() {
        link.SetReceiveCallback([](void* owner, std::string_view chunk) {
            auto& self = *static_cast<LinkTest*>(owner);
            EXPECT_EQ(chunk.data()[chunk.size()], '\0') << "a NUL follows every chunk";
            self.chunks.With([chunk](auto& list) { list.emplace_back(chunk); });
            self.runtime.Sleep(self.handlerTakes);
        });
    }

    bool Open() { return link.OpenPort(this, 7, 115200, 2, 8, 0); }

    bool Write(std::string_view text) {
        auto buffer = std::make_unique<char[]>(text.size());
        std::copy(text.begin(), text.end(), buffer.get());
        return link.WritePort(buffer, text.size());
    }

    std::uint64_t TimeToClose() {
        const std::uint64_t start = runtime.Elapsed();
        link.ClosePort();
        return runtime.Elapsed() - start;
    }

    Guarded<std::vector<std::string>> chunks;
    std::atomic<Ticks> handlerTakes = 0;
};

TEST_F(LinkTest, ConfiguresTheDeviceAndTouchesNothingElse) {
    serial.state.fErrorChar = serial.state.fOutX = serial.state.fAbortOnError = true;
    ASSERT_TRUE(Open());
    EXPECT_EQ(serial.state.BaudRate, 115200u);
    EXPECT_EQ(serial.state.Parity, 0) << "whatever was asked for";
    EXPECT_TRUE(serial.state.fBinary && serial.state.fDtrControl && serial.state.fRtsControl);
    EXPECT_FALSE(serial.state.fErrorChar || serial.state.fOutX || serial.state.fAbortOnError);
    EXPECT_EQ(serial.timeouts.ReadIntervalTimeout, 0xFFFFFFFFu);
    EXPECT_EQ(serial.timeouts.WriteTotalTimeoutConstant, 1000u);
    EXPECT_TRUE(Open()) << "a second opening answers true";
    EXPECT_EQ(serial.opened, 1);
    link.ClosePort();
    EXPECT_EQ(link.Fields().m_hComm, CommHandle::Invalid);
    EXPECT_FALSE(link.Fields().readThread || link.Fields().writeThread);
    link.ClosePort();
    EXPECT_FALSE(Write("AT")) << "nobody writes on a closed link";
    EXPECT_TRUE(Open());
    EXPECT_EQ(serial.opened, 2);
}

TEST_F(LinkTest, FailsAsItsTableSays) {
    serial.SetAbsent(true);
    EXPECT_FALSE(Open());
    serial.SetAbsent(false);
    for (const char* call : {"GetCommState", "SetCommState", "GetCommTimeouts", "SetCommTimeouts"}) {
        serial.SetFailing(call);
        EXPECT_FALSE(Open()) << call;
        EXPECT_TRUE(serial.Open()) << "the device is kept";
        EXPECT_TRUE(Open()) << "so that a second opening answers true";
        link.ClosePort();
        EXPECT_FALSE(serial.Open());
    }
    serial.SetFailing("");
    runtime.RefuseThreads("serial read");
    EXPECT_FALSE(Open());
    link.ClosePort();
    runtime.RefuseThreads("serial write");
    EXPECT_FALSE(Open());
    link.ClosePort();
    EXPECT_THAT(notices.Boxes(), ElementsAre("|create readthread failed", "|create writethread failed"));
    runtime.RefuseThreads("");
    EXPECT_TRUE(Open());
}

TEST_F(LinkTest, HandsOverEachChunkAndSkipsEmptyEvents) {
    ASSERT_TRUE(Open());
    serial.FeedNothing();
    runtime.Sleep(50);
    EXPECT_TRUE(chunks.Get().empty());
    serial.Feed("\r\n+CPIN: ");
    serial.Feed("READY\r\n");
    runtime.Sleep(50);
    EXPECT_THAT(chunks.Get(), ElementsAre("\r\n+CPIN: READY\r\n")) << "what comes in one go is one chunk";
    runtime.Sleep(500);
    serial.Feed(std::string(3000, 'x'));
    runtime.Sleep(1000);
    std::string all;
    for (const std::string& chunk : chunks.Get()) {
        EXPECT_LE(chunk.size(), 1024u);
        all += chunk;
    }
    EXPECT_EQ(all.size(), 16u + 3000u);
}

TEST_F(LinkTest, SendsWhatIsWrittenAtOnceAfterOpening) {
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        ASSERT_TRUE(Open());
        ASSERT_TRUE(Write("AT" + std::to_string(seed)));
        serial.Feed("early");
        runtime.Sleep(200);
        link.ClosePort();
        ASSERT_TRUE(serial.Written().ends_with("AT" + std::to_string(seed)));
        ASSERT_EQ(chunks.Get().back(), "early") << "the reader's purge comes before anybody may send";
    }
}

TEST_F(LinkTest, CompletesALongWriteInPiecesWithPauses) {
    ASSERT_TRUE(Open());
    serial.largestWrite = 100;
    const std::string text(950, 'a');
    ASSERT_TRUE(Write(text));
    runtime.Sleep(80);
    EXPECT_LT(serial.Written().size(), text.size());
    runtime.Sleep(100);
    EXPECT_EQ(serial.Written(), text);
}

TEST_F(LinkTest, ShowsAFailedWriteAndWritesOnAfterwards) {
    ASSERT_TRUE(Open());
    serial.SetFailing("WriteFile");
    ASSERT_TRUE(Write("lost"));
    runtime.Sleep(20);
    serial.SetFailing("");
    ASSERT_TRUE(Write("AT"));
    runtime.Sleep(20);
    EXPECT_THAT(notices.Boxes(), ElementsAre("warning|write port failed!"));
    EXPECT_EQ(serial.Written(), "AT");
}

TEST_F(LinkTest, ClosesPromptlyWhateverItsThreadsAreIn) {
    ASSERT_TRUE(Open());
    EXPECT_LE(TimeToClose(), 110u) << "both threads idle";

    ASSERT_TRUE(Open());
    notices.nobodyDismisses = true;
    serial.SetFailing("WriteFile");
    ASSERT_TRUE(Write("lost"));
    runtime.Sleep(20);
    EXPECT_LE(TimeToClose(), 110u) << "the writer in its message box";
    serial.SetFailing("");

    ASSERT_TRUE(Open());
    serial.stuck = true;
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(Write("AT"));
    runtime.Sleep(20);
    EXPECT_LE(TimeToClose(), 3200u) << "the device takes nothing";
    serial.stuck = false;

    ASSERT_TRUE(Open());
    handlerTakes = 1500;
    serial.Feed("OK\r\n");
    runtime.Sleep(50);
    EXPECT_LE(TimeToClose(), 2200u) << "the reader in a handler";
}

TEST(LinkSchedules, NeverLoseTheEndOfTheReader) {
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        VirtualChannel bench(seed);
        ASSERT_TRUE(bench.link.OpenPort(nullptr, 7, 115200, 0, 8, 0));
        bench.runtime.Sleep(static_cast<Ticks>(seed % 7));
        bench.serial.FeedNothing();
        if (seed % 2 == 0) bench.serial.Feed("RING\r\n");
        bench.runtime.Sleep(static_cast<Ticks>(seed % 13));
        const std::uint64_t start = bench.runtime.Elapsed();
        bench.link.ClosePort();
        ASSERT_LE(bench.runtime.Elapsed() - start, 250u) << "seed " << seed;
    }
}

}  // namespace
}  // namespace varkel::test
