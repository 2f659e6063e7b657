// From the announcement of a message to the record, the news and the tidy SIM.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "tests/session/open_module.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

const char* const storage = "AT+CPMS=\"SM\",\"SM\",\"SM\"";

struct Receiving : testing::Test, OpenBench {};

TEST_F(Receiving, KeepsAnnouncesAndTidies) {
    Happen("sms +8613800138000 \"Grüße, 你好\"", 1500);
    ASSERT_EQ(Inbox().size(), 1u) << "kept before anything else";
    EXPECT_EQ(windows.CountPosted("UM_CALLIN 1 1"), 1);
    EXPECT_EQ(windows.CountPosted("UM_CALLHOOKED 1 1"), 0);
    EXPECT_EQ(screens.Count("new messages"), 0);
    RunFor(8000);

    const SmsRecord record = Inbox()[0];
    EXPECT_EQ(record.szPhoneNo.View(), "8613800138000");
    EXPECT_EQ(Utf8FromNarrow(platform.codePage, record.szContent.View()), "Grüße, 你好");
    EXPECT_THAT(std::string(record.szTime.View()), testing::MatchesRegex("20..-..-.. ..:.."));
    EXPECT_EQ(record.Index, SmsState::Unread);
    EXPECT_EQ(windows.CountPosted("UM_CALLHOOKED 1 1"), 1);
    EXPECT_THAT(sound.Played(), ElementsAre("\\ResidentFlash2\\bin\\msg.wav"));
    EXPECT_EQ(screens.Count("new messages"), 1);
    EXPECT_EQ(dialog->State().m_nNewMessages, 1);
    EXPECT_THAT(Commands(), ElementsAre(storage, "AT+CMGF=0", "AT+CMGR=1", "AT+CMGD=0"));
}

TEST_F(Receiving, TidiesUpToTheLastAnnouncedSlotOneByOne) {
    Happen("sms-burst 3");
    ASSERT_TRUE(RunUntil([&] { return unit.Count("AT+CMGD=0") == 1; }, 20'000));
    unit.TakeTrace();
    RunFor(1500);
    EXPECT_THAT(Commands(), ElementsAre("AT+CMGD=1"));
    RunFor(5000);
    EXPECT_THAT(Commands(), ElementsAre("AT+CMGD=2"));
    EXPECT_THAT(unit.Command("messages"), HasSubstr("1 of 20 slots"));
}

TEST_F(Receiving, HearsOnlyWholeAnnouncementsButEachOfAChunk) {
    for (const std::string line :
         {"\"SM\"", "\"SM\",", "\"SM\",x", "\"SM\",-1", "\"SM\",1000", "\"SM\",99999999999999999999", ""})
        Happen("urc +CMTI: " + line, 500);
    RunFor(5000);
    EXPECT_THAT(Commands(), IsEmpty());
    Happen("raw \\r\\n+CMTI: \"SM\",1\\r\\n\\r\\n+CMTI: \"SM\",2\\r\\n", 5000);
    EXPECT_THAT(Commands(), testing::IsSupersetOf({"AT+CMGR=1", "AT+CMGR=2"}));
}

TEST_F(Receiving, IgnoresAnAnswerThatNobodyAskedFor) {
    Happen(
        "raw \\r\\n+CMGR: 0,,23\\r\\n0891683108108300F0000D91683108108300F00000"
        "90804121000023024F15\\r\\n\\r\\nOK\\r\\n",
        5000);
    EXPECT_THAT(Inbox(), IsEmpty());
    EXPECT_EQ(dialog->State().m_nNewMessages, 0);
}

TEST_F(Receiving, DiscardsWhatIsNoMessageButTidies) {
    Happen("sms-burst 1", 8000);
    Happen("sms-raw 07915121551532F4", 10'000);
    EXPECT_EQ(Inbox().size(), 1u);
    EXPECT_EQ(dialog->State().m_nNewMessages, 1);
    EXPECT_THAT(LogContent(), HasSubstr("slot 2 holds no message"));
    const auto commands = Commands();
    EXPECT_EQ(std::count(commands.begin(), commands.end(), "AT+CMGR=2"), 3) << "it might have been cut short";
    EXPECT_EQ(commands.back(), "AT+CMGD=1");
}

// What has no place in the flash stays on the SIM, and comes into the inbox when there is room again.
TEST_F(Receiving, LosesNothingToAFullVolume) {
    files.freeBytes = 512 * 1024;
    Happen("sms 10086 full", 8000);
    EXPECT_THAT(Inbox(), IsEmpty());
    EXPECT_THAT(screens.Shown(), Contains("warn 29"));
    EXPECT_EQ(dialog->State().m_nNewMessages, 1);
    EXPECT_EQ(windows.CountPosted("UM_CALLIN 1 1"), 1);

    files.freeBytes = 64 * 1024 * 1024;
    Happen("sms 10086 room", 15'000);
    EXPECT_EQ(Inbox().size(), 2u);
    EXPECT_EQ(windows.CountPosted("UM_CALLIN 1 1"), 2) << "each is announced once";
}

TEST_F(Receiving, WaitsForRequestsThatAreUnderWay) {
    dialog->State().m_nNewMessages = 0;
    Happen("sms-no-result 1");
    dialog->Messages().SendSMDll("10010", "no result for a minute");
    RunFor(3000);
    unit.TakeTrace();
    Happen("sms 10086 meanwhile", 30'000);
    EXPECT_THAT(Commands(), IsEmpty()) << "an OK of these would have been the message's result";
    RunFor(60'000);
    EXPECT_EQ(Inbox().size(), 1u);
}

// Announced one by one within a second, while a call rings and lines are lost.
void ReceiveABurst(std::uint64_t seed) {
    OpenBench bench(seed);
    std::mt19937_64 random(seed);
    bench.Happen("sms-burst 20");
    for (int i = 0; i < 10; ++i) {
        bench.RunFor(static_cast<Ticks>(random() % 200));
        bench.Happen("urc RING");
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
    const int messages = static_cast<int>(NumberFrom("VARKEL_MESSAGES", 200));
    OpenBench bench;
    std::vector<std::string> sent;
    std::vector<std::string> kept;
    const auto look = [&] {
        for (const SmsRecord& record : bench.Inbox()) {
            const std::string text(record.szContent.View());
            if (std::find(kept.rbegin(), kept.rend(), text) == kept.rend()) kept.push_back(text);
        }
    };
    for (int number = 1; number <= messages; ++number) {
        sent.push_back(std::to_string(number));
        bench.Happen("sms 10010 " + sent.back(), 1000);
        if (number % 60 == 0) look();
    }
    for (int minute = 0; minute < messages / 600 + 2; ++minute) {
        bench.RunFor(60'000);
        look();
    }
    EXPECT_EQ(kept, sent) << bench.unit.Command("messages");
}

}  // namespace
}  // namespace varkel::test
