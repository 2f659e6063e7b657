// From the announcement of a message to the record, the news and the tidy SIM.
#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "tests/session/open_module.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const storage = "AT+CPMS=\"SM\",\"SM\",\"SM\"";

struct Receiving : testing::Test {
    OpenBench bench;
};

TEST_F(Receiving, KeepsAnnouncesAndTidies) {
    bench.unit.Command("sms +8613800138000 \"Grüße, 你好\"");
    bench.RunFor(1500);
    ASSERT_EQ(bench.Inbox().size(), 1u) << "kept before anything else";
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLIN 1 1"), 1);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLHOOKED 1 1"), 0);
    EXPECT_EQ(bench.screens.Count("new messages"), 0);
    bench.RunFor(8000);

    const SmsRecord record = bench.Inbox()[0];
    EXPECT_EQ(record.szPhoneNo.View(), "8613800138000");
    EXPECT_EQ(Utf8FromNarrow(bench.platform.codePage, record.szContent.View()), "Grüße, 你好");
    EXPECT_THAT(std::string(record.szTime.View()), testing::MatchesRegex("20..-..-.. ..:.."));
    EXPECT_EQ(record.Index, SmsState::Unread);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLHOOKED 1 1"), 1);
    EXPECT_THAT(bench.sound.Played(), ElementsAre("\\ResidentFlash2\\bin\\msg.wav"));
    EXPECT_EQ(bench.screens.Count("new messages"), 1);
    EXPECT_EQ(bench.dialog->State().m_nNewMessages, 1);
    EXPECT_THAT(bench.Commands(), ElementsAre(storage, "AT+CMGF=0", "AT+CMGR=1", "AT+CMGD=0"));
}

TEST_F(Receiving, TidiesUpToTheLastAnnouncedSlotOneByOne) {
    bench.unit.Command("sms-burst 3");
    ASSERT_TRUE(bench.RunUntil([&] { return bench.unit.Count("AT+CMGD=0") == 1; }, 20'000));
    bench.unit.TakeTrace();
    bench.RunFor(1500);
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CMGD=1"));
    bench.RunFor(5000);
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CMGD=2"));
    EXPECT_THAT(bench.unit.Command("messages"), HasSubstr("1 of 20 slots"));
}

// Without this the clean-up after the next message would delete what nobody has read.
TEST_F(Receiving, FindsWhatWasAnnouncedToNobody) {
    bench.unit.Command("lose 1");
    bench.unit.Command("sms-burst 2");
    bench.RunFor(1000);
    bench.unit.Command("lose 0");
    bench.unit.Command("sms 10086 announced");
    bench.RunFor(20'000);
    EXPECT_EQ(bench.Inbox().size(), 3u);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLIN 1 1"), 3);
}

TEST(ReceivingAtTheStart, FindsWhatCameBeforeTheModuleWasOpen) {
    SessionBench bench;
    bench.Start("");
    bench.unit.Command("sms 10086 \"while the car stood\"");
    MessageBox& inbox = bench.dialog->Messages().Boxes().inbox;
    for (int opening = 1; opening <= 2; ++opening) {
        bench.OpenModule();
        bench.RunFor(20'000);
        EXPECT_EQ(inbox.Count(), 1u) << "and only once, though it stays on the SIM";
        bench.dialog->CloseModule();
        bench.RunFor(5000);
    }
}

TEST_F(Receiving, HearsOnlyWholeAnnouncements) {
    for (const char* line : {"+CMTI: \"SM\"", "+CMTI: \"SM\",", "+CMTI: \"SM\",x", "+CMTI: \"SM\",-1",
                             "+CMTI: \"SM\",1000", "+CMTI: \"SM\",99999999999999999999", "+CMTI:"}) {
        bench.unit.Command(std::string("urc ") + line);
        bench.RunFor(500);
    }
    bench.RunFor(5000);
    EXPECT_THAT(bench.Commands(), IsEmpty());
}

TEST_F(Receiving, HearsEveryAnnouncementOfAChunk) {
    bench.unit.Command("raw \\r\\n+CMTI: \"SM\",1\\r\\n\\r\\n+CMTI: \"SM\",2\\r\\n");
    bench.RunFor(5000);
    EXPECT_THAT(bench.Commands(), testing::IsSupersetOf({"AT+CMGR=1", "AT+CMGR=2"}));
}

TEST_F(Receiving, IgnoresAnAnswerThatNobodyAskedFor) {
    bench.unit.Command(
        "raw \\r\\n+CMGR: 0,,23\\r\\n0891683108108300F0000D91683108108300F00000"
        "90804121000023024F15\\r\\n\\r\\nOK\\r\\n");
    bench.RunFor(5000);
    EXPECT_THAT(bench.Inbox(), IsEmpty());
    EXPECT_EQ(bench.dialog->State().m_nNewMessages, 0);
}

TEST_F(Receiving, DiscardsWhatIsNoMessageButTidies) {
    bench.unit.Command("sms-burst 1");
    bench.RunFor(8000);
    bench.unit.Command("sms-raw 07915121551532F4");
    bench.RunFor(10'000);
    EXPECT_EQ(bench.Inbox().size(), 1u);
    EXPECT_EQ(bench.dialog->State().m_nNewMessages, 1);
    EXPECT_THAT(bench.LogContent(), HasSubstr("slot 2 holds no message"));
    const auto commands = bench.Commands();
    EXPECT_EQ(std::count(commands.begin(), commands.end(), "AT+CMGR=2"), 3) << "it might have been cut short";
    EXPECT_EQ(commands.back(), "AT+CMGD=1");
}

// What has no place in the flash stays on the SIM, and comes into the inbox when there is room again.
TEST_F(Receiving, LosesNothingToAFullVolume) {
    bench.files.freeBytes = 512 * 1024;
    bench.unit.Command("sms 10086 full");
    bench.RunFor(8000);
    EXPECT_THAT(bench.Inbox(), IsEmpty());
    EXPECT_THAT(bench.screens.Shown(), Contains("warn 29"));
    EXPECT_EQ(bench.dialog->State().m_nNewMessages, 1);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLIN 1 1"), 1);

    bench.files.freeBytes = 64 * 1024 * 1024;
    bench.unit.Command("sms 10086 room");
    bench.RunFor(15'000);
    EXPECT_EQ(bench.Inbox().size(), 2u);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLIN 1 1"), 2) << "each is announced once";
}

TEST_F(Receiving, WaitsForRequestsThatAreUnderWay) {
    bench.dialog->State().m_nNewMessages = 0;
    bench.unit.Command("sms-no-result 1");
    bench.dialog->Messages().SendSMDll("10010", "no result for a minute");
    bench.RunFor(3000);
    bench.unit.TakeTrace();
    bench.unit.Command("sms 10086 meanwhile");
    bench.RunFor(30'000);
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "an OK of these would have been the message's result";
    bench.RunFor(60'000);
    EXPECT_EQ(bench.Inbox().size(), 1u);
}

// Announced one by one within a second, while a call rings and lines are lost.
void ReceiveABurst(std::uint64_t seed) {
    OpenBench bench(seed);
    std::mt19937_64 random(seed);
    bench.unit.Command("sms-burst 20");
    for (int i = 0; i < 10; ++i) {
        bench.RunFor(static_cast<Ticks>(random() % 200));
        bench.unit.Command("urc RING");
    }
    ASSERT_TRUE(bench.RunUntil([&] { return bench.Inbox().size() >= 20; }, 60'000)) << "seed " << seed;
    std::set<std::string> texts;
    for (const SmsRecord& record : bench.Inbox())
        texts.emplace(record.szContent.View());
    ASSERT_EQ(texts.size(), 20u) << "seed " << seed;
    if (seed > 5) return;
    // And then all of them are announced, and only the last slot is left.
    bench.RunFor(120'000);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLHOOKED 1 1"), 20);
    EXPECT_THAT(bench.unit.Command("messages"), HasSubstr("20"));
}

TEST(ReceivingManySeeds, KeepsEveryMessageOfABurst) {
    ForEachSeed(500, ReceiveABurst);
}

// VARKEL_MESSAGES in the environment, for longer runs. The inbox keeps the newest 150 of them; the network
// keeps what waits for room, because the SIM's 20 slots are emptied at most 19 in 20 s.
TEST(ReceivingForLong, KeepsEveryMessageOfOneASecond) {
    const char* const wanted = std::getenv("VARKEL_MESSAGES");
    const int messages = wanted ? std::atoi(wanted) : 200;
    OpenBench bench;
    std::vector<std::string> kept;
    const auto look = [&] {
        for (const SmsRecord& record : bench.Inbox()) {
            const std::string text(record.szContent.View());
            if (std::find(kept.rbegin(), kept.rend(), text) == kept.rend()) kept.push_back(text);
        }
    };
    for (int number = 1; number <= messages; ++number) {
        bench.unit.Command("sms 10010 " + std::to_string(number));
        bench.RunFor(1000);
        if (number % 60 == 0) look();
    }
    for (int minute = 0; minute < messages / 600 + 2; ++minute) {
        bench.RunFor(60'000);
        look();
    }
    ASSERT_EQ(kept.size(), static_cast<std::size_t>(messages)) << bench.unit.Command("messages");
    for (int number = 1; number <= messages; ++number)
        EXPECT_EQ(kept[static_cast<std::size_t>(number - 1)], std::to_string(number));
}

}  // namespace
}  // namespace varkel::test
