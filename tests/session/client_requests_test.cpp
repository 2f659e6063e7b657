// What other programs ask by window messages and copied data, and what hostile ones cannot do.
#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

// The bytes of a message: 32 that mean nothing, the number, the text.
std::vector<std::byte> Block(std::u16string number, std::u16string_view text) {
    std::vector<std::byte> block(64 + text.size() * 2, std::byte{0xEE});
    number += u'\0';
    std::memcpy(block.data() + 32, number.data(), std::min<std::size_t>(number.size() * 2, 32));
    std::memcpy(block.data() + 64, text.data(), text.size() * 2);
    return block;
}

struct Clients : testing::Test, OpenBench {
    // A program that hears of the link; its place among all.
    std::uint32_t AddProgram() {
        const auto place = static_cast<std::uint32_t>(programs++);
        return static_cast<std::uint32_t>(windows.AddProgram([this, place](const WindowMessage& message) {
            if (message.id == 1566) heard.push_back(place * 10 + message.wParam);
        }));
    }
    bool Answered(Ticks within) {
        const bool answered = RunUntil([this] { return response->Wait(0) == WaitResult::Object0; }, within);
        response->Reset();
        return answered;
    }
    bool Answers(unsigned number, Ticks within = 200) {
        Post(WM_USER + number);
        return Answered(within);
    }
    GsmDataLayout Shared() {
        GsmDataLayout shared;
        std::memcpy(&shared, block->MapViewOfFile().data(), sizeof shared);
        return shared;
    }
    std::uint32_t Copy(std::uint32_t dwData, const std::vector<std::byte>& data) {
        return windows.CopyData("3Gwindow", dwData, data).value_or(99);
    }

    std::shared_ptr<Event> response = objects.CreateEvent("CGSMData RESP EVENT");
    std::unique_ptr<NamedMapping> block = objects.CreateFileMapping("SAFE_MEM_DATA_FILE", 1032);
    int programs = 0;
    std::vector<std::uint32_t> heard;
};

TEST_F(Clients, ReadTheIdentityAndTheLinkInTheSharedBlock) {
    for (const unsigned number : {1002u, 1003u, 1005u})
        EXPECT_TRUE(Answers(number)) << number;
    EXPECT_EQ(std::u16string(Shared().imsi), u"460001234567890");
    EXPECT_EQ(std::u16string(Shared().imei), u"867959030000017");
    EXPECT_EQ(Shared().connectionStatus, 1u);
    dialog->Data().RasHangUp();
    RunFor(5000);
    EXPECT_TRUE(Answers(1005));
    EXPECT_EQ(Shared().connectionStatus, 2u);
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(Clients, GetAnIdentityThatIsNotKnownYetFromTheModemOrNoAnswer) {
    SessionState& state = dialog->State();
    state.m_strImsi.Set("46");
    for (int i = 0; i < 100; ++i)
        Post(WM_USER + 1002);
    EXPECT_TRUE(Answered(1000));
    EXPECT_EQ(std::u16string(Shared().imsi), u"460001234567890");
    EXPECT_THAT(Commands(), ElementsAre("AT+CIMI")) << "once for all who ask";
    state.m_strImei.Set("");
    Happen("late 9s");
    EXPECT_FALSE(Answers(1003, 15'000)) << "too late";
    EXPECT_EQ(Shared().imei[0], 0);
    EXPECT_TRUE(Answers(1003)) << "but known by now";
}

TEST_F(Clients, HoldUpNobodyWithTheLockOfTheBlock) {
    const auto mutex = objects.CreateMutex("SAFE_MEM_DATA_FILE MUTEX");
    ASSERT_EQ(mutex->Wait(0), WaitResult::Object0);
    Post(WM_USER + 1002);
    const std::uint64_t start = runtime.Elapsed();
    RunFor(100);
    EXPECT_LE(runtime.Elapsed() - start, 200u) << "the dialog thread works on";
    EXPECT_FALSE(Answered(6000));
    EXPECT_EQ(Shared().imsi[0], 0) << "not written without the lock";
    mutex->ReleaseMutex();
    EXPECT_TRUE(Answers(1002));
}

TEST_F(Clients, AreToldOfTheLinkInTheOrderInWhichTheyAsked) {
    const std::uint32_t first = AddProgram();
    const std::uint32_t second = AddProgram();
    for (const std::uint32_t window : {second, first, second, 0u, 0xFFFFu})
        Post(WM_USER + 1000, window);
    RunFor(10'000);
    EXPECT_THAT(heard, ElementsAre(11, 1, 11)) << "one entry, but an answer each";
    icmp.allSilent = true;
    Post(WM_USER + 1004);
    Post(WM_USER + 1004);
    RunFor(10'000);
    EXPECT_THAT(heard, ElementsAre(11, 1, 11, 12, 2)) << "once";
    Post(WM_USER + 1001, second);
    Post(WM_USER + 1001, second);
    windows.DestroyWindow(WindowHandle{first});
    Post(WM_USER + 1004);
    RunFor(10'000);
    EXPECT_EQ(heard.size(), 5u) << "one was removed, one has gone";

    Listeners listeners(windows);
    for (std::uint32_t handle = 0x10000; listeners.Size() < Listeners::limit; ++handle)
        ASSERT_TRUE(listeners.Add(WindowHandle{handle}));
    EXPECT_FALSE(listeners.Add(WindowHandle{first})) << "the list is full";
    listeners.Remove(WindowHandle{0x10000});
    EXPECT_TRUE(listeners.Add(WindowHandle{first}));
}

TEST_F(Clients, SendMessages) {
    const auto sent = objects.CreateEvent("SendSM_SUS");
    EXPECT_EQ(Copy(0, Block(u"13800000000", u"hello, 你好")), 1u);
    EXPECT_EQ(Copy(0, Block({u"13800000001\0\x1A", 13}, {u"second\0rest", 11})), 1u);
    RunFor(20'000);
    EXPECT_EQ(sent->Wait(0), WaitResult::Object0);
    EXPECT_THAT(unit.Command("sent"), HasSubstr("8613800000000  \"hello, 你好\""));
    EXPECT_THAT(unit.Command("sent"), HasSubstr("8613800000001  \"second\""));
    Happen("sms-fail 1");
    EXPECT_EQ(Copy(0, Block(u"13800000002", u"third")), 1u);
    RunFor(5000);
    EXPECT_EQ(sent->Wait(0), WaitResult::Timeout) << "failed";
    sent->Set();
    unit.TakeTrace();
    EXPECT_EQ(Copy(0, Block(u"12\x1A\rAT+CFUN=0", u"x")), 1u);
    RunFor(5000);
    EXPECT_EQ(sent->Wait(0), WaitResult::Timeout) << "failed";
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_EQ(Outbox().size(), 3u);
    EXPECT_THAT(StartingWith({"tip "}, screens.Shown()), IsEmpty()) << "the event alone tells";
}

TEST_F(Clients, AreRefusedWhatTheyCannotMean) {
    for (std::uint32_t dwData = 1; dwData <= 4; ++dwData)
        EXPECT_EQ(Copy(dwData, {}), 1u);
    EXPECT_EQ(Copy(5, Block(u"1", u"x")), 0u);
    for (std::size_t size = 0; size <= 200; ++size)
        EXPECT_EQ(Copy(0, std::vector<std::byte>(size, std::byte{0xFF})), size >= 66 ? 1u : 0u) << size;
    EXPECT_EQ(Copy(0, std::vector<std::byte>(4096, std::byte{'1'})), 1u);
    EXPECT_EQ(Copy(0, std::vector<std::byte>(4097, std::byte{'1'})), 0u);
    RunFor(60'000);
    EXPECT_THAT(Commands(), IsEmpty()) << "no number among them";
    EXPECT_THAT(LogContent(), HasSubstr("[OnCopyData]--a block of 65 bytes is refused"));
    EXPECT_THAT(notices.Boxes(), ElementsAre("|rcvsm", "|delsm", "|getsm", "|gessmcnt"));
}

TEST_F(Clients, CannotBringTheProgramDownByAnyMessage) {
    std::mt19937 random(1);
    std::vector<MessageId> messages;
    for (unsigned number = 998; number <= 1007; ++number)
        messages.push_back(WM_USER + number);
    for (const char* name : {"3Gwindow_SHOW", "3Gwindow_HIDE", "Network_interface", "UM_QX_CALL",
                             "LANGUAGE_CHANGE", "NEED_CLOSE_USB_HOST", "UM_3G_SIMCARDDETACH", "3G_OPEN_END"})
        messages.push_back(windows.RegisterWindowMessage(name));
    for (const MessageId id : messages) {
        for (int i = 0; i < 16; ++i) {
            const std::uint32_t values[] = {0, 1, 0xFFFFFFFF, static_cast<std::uint32_t>(random())};
            Post(id, values[i % 4], values[i / 4]);
            RunFor(static_cast<Ticks>(random() % 3000));
        }
    }
    RunFor(120'000);
    ASSERT_FALSE(loop.Quitting());
    dialog->OpenModule();
    RunFor(60'000);
    EXPECT_TRUE(Answers(1005)) << "it still serves";
    EXPECT_EQ(Shared().connectionStatus, 1u);
}

TEST_F(Clients, MayAskTenThousandTimesASecond) {
    for (std::uint32_t i = 0; i < 1000; ++i)
        Post(WM_USER + 1000, 0x10000 + i);
    for (std::uint32_t i = 0; i < 10'000; ++i) {
        Post(WM_USER + 1000 + i % 6, 0x10000);
        (void)Copy(0, Block(u"13800000000", u"flood"));
        if (i % 100 == 0) RunFor(10);
    }
    Happen("urc RING", 1000);
    EXPECT_GT(screens.Count("incoming call"), 0) << "a call gets through";
    RunFor(200'000);
    EXPECT_TRUE(Answers(1005));
    EXPECT_LE(icmp.Asked().size(), 200u) << "link tests are shared";
    EXPECT_LE(Outbox().size(), 150u);
    EXPECT_FALSE(dialog->State().m_externalClient) << "every message has had its result";
}

}  // namespace
}  // namespace varkel::test
