// What other programs ask by window messages and copied data, and what hostile ones cannot do.
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(ListenersTest, KeepTheirOrderAndTheirBound) {
    VirtualRuntime runtime(1);
    MessageLoop loop(runtime);
    MemoryWindows windows(loop);
    Listeners listeners(windows);
    EXPECT_FALSE(listeners.Add(WindowHandle::None));
    EXPECT_FALSE(listeners.Add(WindowHandle::Broadcast));
    std::vector<int> heard;
    std::vector<WindowHandle> handles;
    for (int i = 0; i < 4; ++i) {
        handles.push_back(windows.AddProgram([&heard, i](const WindowMessage&) { heard.push_back(i); }));
    }
    for (const int i : {2, 0, 3, 1, 0})
        EXPECT_TRUE(listeners.Add(handles[static_cast<std::size_t>(i)]));
    listeners.Remove(handles[3]);
    listeners.Remove(handles[3]);
    listeners.TellAll({});
    bool over = false;
    loop.Post([&over] { over = true; });
    loop.Run([&over] { return over; });
    EXPECT_THAT(heard, ElementsAre(2, 0, 1));
    for (std::uint32_t handle = 0x10000; listeners.Size() < Listeners::limit; ++handle)
        EXPECT_TRUE(listeners.Add(WindowHandle{handle}));
    EXPECT_FALSE(listeners.Add(WindowHandle{5}));
    EXPECT_TRUE(listeners.Add(WindowHandle{0x10000})) << "is there already";
    listeners.Remove(WindowHandle{0x10000});
    EXPECT_TRUE(listeners.Add(WindowHandle{5}));
}

// The bytes of a message: 32 that mean nothing, the number, the text.
std::vector<std::byte> Block(std::u16string_view number, std::u16string_view text) {
    std::vector<std::byte> block(64, std::byte{0xEE});
    const auto put = [&block](std::size_t at, std::u16string_view units) {
        block.resize(std::max(block.size(), at + units.size() * 2));
        std::memcpy(block.data() + at, units.data(), units.size() * 2);
    };
    put(32, std::u16string(number) + u'\0');
    put(64, text);
    return block;
}

struct Clients : testing::Test {
    Clients() {
        response->Reset();
        for (int i = 0; i < 2; ++i) {
            programs.push_back(bench.windows.AddProgram([this, i](const WindowMessage& message) {
                if (message.id == 1566) heard.push_back({i, message.wParam});
            }));
        }
    }

    void Post(unsigned number, std::uint32_t wParam = 0, std::uint32_t lParam = 0) {
        bench.windows.PostMessage(bench.dialog->Window(), {WM_USER + number, wParam, lParam});
    }
    void PostWindow(unsigned number, std::size_t program) {
        Post(number, static_cast<std::uint32_t>(programs[program]));
    }
    bool Answered(Ticks within) {
        const bool answered =
            bench.RunUntil([this] { return response->Wait(0) == WaitResult::Object0; }, within);
        response->Reset();
        return answered;
    }
    GsmDataLayout Shared() {
        GsmDataLayout shared;
        std::memcpy(&shared, block->MapViewOfFile().data(), sizeof shared);
        return shared;
    }
    std::optional<std::uint32_t> Copy(std::uint32_t dwData, const std::vector<std::byte>& data) {
        return bench.windows.CopyData("3Gwindow", dwData, data);
    }

    OpenBench bench;
    std::shared_ptr<Event> response = bench.objects.CreateEvent("CGSMData RESP EVENT");
    std::unique_ptr<NamedMapping> block = bench.objects.CreateFileMapping("SAFE_MEM_DATA_FILE", 1032);
    std::vector<WindowHandle> programs;
    std::vector<std::pair<int, std::uint32_t>> heard;
};

TEST_F(Clients, ReadTheIdentityAndTheLinkInTheSharedBlock) {
    Post(1002);
    EXPECT_TRUE(Answered(200));
    EXPECT_EQ(std::u16string(Shared().imsi), u"460001234567890");
    Post(1003);
    EXPECT_TRUE(Answered(200));
    EXPECT_EQ(std::u16string(Shared().imei), u"867959030000017");
    Post(1005);
    EXPECT_TRUE(Answered(200));
    EXPECT_EQ(Shared().connectionStatus, 1u);
    bench.dialog->Data().RasHangUp();
    bench.RunFor(5000);
    Post(1005);
    EXPECT_TRUE(Answered(200));
    EXPECT_EQ(Shared().connectionStatus, 2u);
    EXPECT_EQ(Shared().windowHandle, static_cast<std::uint32_t>(bench.dialog->Window()));
    EXPECT_THAT(bench.Commands(), IsEmpty());
}

TEST_F(Clients, GetAnIdentityThatIsNotKnownYetFromTheModemOrNoAnswer) {
    SessionState& state = bench.dialog->State();
    state.m_strImsi.Set("46");
    for (int i = 0; i < 100; ++i)
        Post(1002);
    EXPECT_TRUE(Answered(1000));
    EXPECT_EQ(std::u16string(Shared().imsi), u"460001234567890");
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CIMI")) << "once for all who ask";

    state.m_strImei.Set("");
    bench.unit.Command("late 9s");
    Post(1003);
    EXPECT_FALSE(Answered(15'000)) << "too late";
    EXPECT_EQ(Shared().imei[0], 0);
    Post(1003);
    EXPECT_TRUE(Answered(200)) << "but known by now";
}

TEST_F(Clients, HoldUpNobodyWithTheLockOfTheBlock) {
    const auto mutex = bench.objects.CreateMutex("SAFE_MEM_DATA_FILE MUTEX");
    ASSERT_EQ(mutex->Wait(0), WaitResult::Object0);
    Post(1002);
    const std::uint64_t start = bench.runtime.Elapsed();
    bench.RunFor(100);
    EXPECT_LE(bench.runtime.Elapsed() - start, 200u) << "the dialog thread works on";
    bench.RunFor(6000);
    EXPECT_EQ(Shared().imsi[0], 0) << "not written without the lock";
    EXPECT_FALSE(Answered(100));
    mutex->ReleaseMutex();
    Post(1002);
    EXPECT_TRUE(Answered(200));
}

TEST_F(Clients, AreToldOfTheLinkInTheOrderInWhichTheyAsked) {
    PostWindow(1000, 1);
    PostWindow(1000, 0);
    PostWindow(1000, 1);
    bench.RunFor(10'000);
    EXPECT_THAT(heard, ElementsAre(std::pair(1, 1u), std::pair(0, 1u), std::pair(1, 1u)))
        << "one entry, but an answer each";
    heard.clear();
    bench.icmp.allSilent = true;
    Post(1004);
    Post(1004);
    bench.RunFor(10'000);
    EXPECT_THAT(heard, ElementsAre(std::pair(1, 2u), std::pair(0, 2u))) << "once";
    PostWindow(1001, 1);
    PostWindow(1001, 1);
    heard.clear();
    bench.windows.DestroyWindow(programs[0]);
    Post(1004);
    bench.RunFor(10'000);
    EXPECT_THAT(heard, IsEmpty()) << "one was removed, one has gone";
}

TEST_F(Clients, SendMessages) {
    const auto sent = bench.objects.CreateEvent("SendSM_SUS");
    EXPECT_EQ(Copy(0, Block(u"13800000000", u"hello, 你好")), 1u);
    EXPECT_EQ(Copy(0, Block(std::u16string(u"13800000001\0\x1A", 13), std::u16string(u"second\0rest", 11))),
              1u);
    bench.RunFor(20'000);
    EXPECT_EQ(sent->Wait(0), WaitResult::Object0);
    const std::string log = bench.unit.Command("sent");
    EXPECT_THAT(log, HasSubstr("8613800000000  \"hello, 你好\""));
    EXPECT_THAT(log, HasSubstr("8613800000001  \"second\""));
    EXPECT_EQ(bench.screens.Count("tip 1") + bench.screens.Count("tip 2"), 0);
    EXPECT_EQ(bench.Outbox().size(), 2u);

    sent->Set();
    bench.unit.TakeTrace();
    EXPECT_EQ(Copy(0, Block(u"12\x1A\rAT+CFUN=0", u"x")), 1u);
    bench.RunFor(5000);
    EXPECT_EQ(sent->Wait(0), WaitResult::Timeout) << "failed";
    EXPECT_THAT(bench.Commands(), IsEmpty());
    EXPECT_EQ(bench.Outbox().size(), 2u);
}

TEST_F(Clients, AreRefusedWhatTheyCannotMean) {
    const char* const boxes[] = {"|rcvsm", "|delsm", "|getsm", "|gessmcnt"};
    for (std::uint32_t dwData = 1; dwData <= 4; ++dwData) {
        EXPECT_EQ(Copy(dwData, {}), 1u);
        EXPECT_EQ(bench.notices.Boxes().back(), boxes[dwData - 1]);
    }
    EXPECT_EQ(Copy(5, Block(u"1", u"x")), 0u);
    EXPECT_EQ(Copy(0xFFFFFFFF, {}), 0u);
    for (std::size_t size = 0; size <= 200; ++size)
        EXPECT_EQ(Copy(0, std::vector<std::byte>(size, std::byte{0xFF})), size >= 66 ? 1u : 0u) << size;
    EXPECT_EQ(Copy(0, std::vector<std::byte>(4096, std::byte{'1'})), 1u);
    EXPECT_EQ(Copy(0, std::vector<std::byte>(4097, std::byte{'1'})), 0u);
    bench.RunFor(60'000);
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "no number among them";
    EXPECT_THAT(bench.LogContent(), HasSubstr("[OnCopyData]--a block of 65 bytes is refused"));
    EXPECT_EQ(bench.notices.Boxes().size(), 4u);
}

TEST_F(Clients, CannotBringTheProgramDownByAnyMessage) {
    std::mt19937 random(1);
    const char* const names[] = {"3Gwindow_SHOW",       "3Gwindow_HIDE",   "Network_interface",
                                 "UM_QX_CALL",          "LANGUAGE_CHANGE", "NEED_CLOSE_USB_HOST",
                                 "UM_3G_SIMCARDDETACH", "3G_OPEN_END",     "UM_CALLIN"};
    std::vector<MessageId> messages;
    for (unsigned number = 998; number <= 1007; ++number)
        messages.push_back(WM_USER + number);
    for (const char* name : names)
        messages.push_back(bench.windows.RegisterWindowMessage(name));
    for (const MessageId id : messages) {
        for (const std::uint32_t wParam : {0u, 1u, 0xFFFFFFFFu, static_cast<std::uint32_t>(random())}) {
            for (const std::uint32_t lParam : {0u, 1u, 0xFFFFFFFFu, static_cast<std::uint32_t>(random())}) {
                bench.windows.PostMessage(bench.dialog->Window(), {id, wParam, lParam});
                bench.RunFor(static_cast<Ticks>(random() % 3000));
            }
        }
    }
    bench.RunFor(120'000);
    ASSERT_FALSE(bench.loop.Quitting());
    bench.dialog->OpenModule();
    bench.RunFor(60'000);
    Post(1005);
    EXPECT_TRUE(Answered(200)) << "it still serves";
    EXPECT_EQ(Shared().connectionStatus, 1u);
}

TEST_F(Clients, MayAskTenThousandTimesASecond) {
    for (std::uint32_t i = 0; i < 1000; ++i)
        Post(1000, 0x10000 + i);
    for (int i = 0; i < 10'000; ++i) {
        Post(1000 + static_cast<unsigned>(i) % 6, static_cast<std::uint32_t>(programs[0]));
        (void)Copy(0, Block(u"13800000000", u"flood"));
        if (i % 100 == 0) bench.RunFor(10);
    }
    bench.unit.Command("urc RING");
    ASSERT_TRUE(bench.RunUntil([&] { return bench.screens.Count("incoming call") > 0; }, 1000))
        << "a call gets through";
    bench.RunFor(200'000);
    Post(1005);
    EXPECT_TRUE(Answered(200));
    EXPECT_LE(bench.unit.Count("AT+CPIN?"), 100) << "link tests are shared";
    EXPECT_LE(bench.Outbox().size(), 150u);
    EXPECT_FALSE(bench.dialog->State().m_externalClient) << "every message has had its result";
}

}  // namespace
}  // namespace varkel::test
