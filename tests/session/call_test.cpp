// Calls in and out, and everything that can end them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "tests/session/open_module.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct CallBench : OpenBench {
    explicit CallBench(std::uint64_t seed = 1) : OpenBench(seed) {}

    CallControl& Calls() { return dialog->Calls(); }
    CallLists& Lists() { return dialog->Calls().Lists(); }
    ScreenMode Mode() { return dialog->State().MainScreenMode; }
    std::string Value(const char* name) {
        ValueTable values = CallStateValues(registry, notices);
        (void)values.Load();
        return values.Get(name);
    }
    // "number name" of each record.
    static std::vector<std::string> Shown(CallList& list) {
        std::vector<std::string> shown;
        for (const CallRecord& record : list.FindCallRecord())
            shown.push_back(std::string(record.number.View()) + " " + std::string(record.name.View()));
        return shown;
    }
    void ExpectRest(const std::string& where) {
        EXPECT_TRUE(unit.AudioAtRest()) << where;
        EXPECT_EQ(unit.SuspendLocks(), 0) << where;
        EXPECT_EQ(Value("CallStatus"), "") << where;
        EXPECT_EQ(Value("HookDialed"), "0") << where;
        EXPECT_NE(Mode(), ScreenMode::InCall) << where;
        EXPECT_FALSE(Calls().Busy()) << where;
    }
};

struct Calls : testing::Test {
    CallBench bench;
};

TEST_F(Calls, AreAnsweredAndRecordedAsReceived) {
    bench.unit.Command("call +8613800138000");
    bench.RunFor(4000);
    EXPECT_EQ(bench.windows.CountPosted("_WAV_CALL_STATUS 0 1"), 1) << "once a call";
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLIN 0 0"), 2) << "with each ring";
    EXPECT_THAT(bench.screens.Shown(), Contains("caller +8613800138000 IDS_RING"));
    EXPECT_THAT(bench.sound.Played(), Contains("\\ResidentFlash2\\bin\\ring.wav"));
    bench.unit.TakeTrace();
    bench.RunFor(15'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 0) << "no poll while it rings";

    bench.Calls().Answer();
    bench.RunFor(2000);
    EXPECT_EQ(bench.Mode(), ScreenMode::InCall);
    EXPECT_EQ(bench.Value("CallStatus"), "+8613800138000");
    EXPECT_EQ(bench.Value("HookDialed"), "0");
    EXPECT_EQ(bench.unit.SuspendLocks(), 2);
    EXPECT_FALSE(bench.unit.AudioAtRest());
    bench.Calls().ToggleSpeaker();
    bench.Calls().SendTone("5");
    bench.Calls().SendTone("12");
    bench.RunFor(500);
    EXPECT_THAT(bench.unit.TakeTrace(), testing::IsSupersetOf({"SetGprsHpSpkStatus 1", "AT+VTS=5"}));

    bench.unit.Command("hangup");
    bench.RunFor(2000);
    bench.ExpectRest("after the call");
    EXPECT_THAT(CallBench::Shown(bench.Lists().received), ElementsAre("+8613800138000 +8613800138000"));
    EXPECT_THAT(bench.Lists().missed.FindCallRecord(), IsEmpty());
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLHOOKED 0 0"), 1);
    bench.RunFor(20'000);
    EXPECT_GE(bench.unit.Count("AT+CSQ"), 2) << "the poll goes on";
}

TEST_F(Calls, AreMissedOrRejected) {
    bench.unit.Command("call 10086");
    bench.RunFor(4000);
    bench.unit.Command("hangup");
    bench.RunFor(2000);
    bench.unit.Command("call 10010");
    bench.RunFor(4000);
    bench.Calls().Reject();
    bench.RunFor(3000);
    bench.unit.Command("call hidden");
    bench.RunFor(4000);
    bench.unit.Command("hangup");
    bench.RunFor(2000);
    EXPECT_THAT(CallBench::Shown(bench.Lists().missed), ElementsAre("10086 10086", "10010 10010"))
        << "a hidden caller leaves no record, and not the one of an earlier caller";
    bench.ExpectRest("after three calls");
}

TEST_F(Calls, ThatEndUnreportedStopRinging) {
    bench.unit.Command("urc RING");
    bench.RunFor(5000);
    EXPECT_TRUE(bench.Calls().Busy());
    bench.RunFor(8000);
    bench.ExpectRest("after a ring without an end");
}

TEST_F(Calls, AreDialledAndRecordedAtOnce) {
    ASSERT_TRUE(bench.Calls().Dial("10000"));
    bench.RunFor(1000);
    EXPECT_THAT(CallBench::Shown(bench.Lists().dialled), ElementsAre("10000 10000"));
    EXPECT_THAT(bench.screens.Shown(), Contains("status IDS_CALLING 10000"));
    EXPECT_EQ(bench.Mode(), ScreenMode::Idle);
    bench.RunFor(4000);
    EXPECT_EQ(bench.Mode(), ScreenMode::InCall);
    EXPECT_EQ(bench.Value("CallStatus"), "1");
    EXPECT_EQ(bench.Value("HookDialed"), "1");
    EXPECT_FALSE(bench.Calls().Dial("10086")) << "the line is taken";
    bench.Calls().HangUp();
    bench.RunFor(3000);
    bench.ExpectRest("after an answered call");

    for (const char* number : {"10001", "10002"}) {  // busy, never answered
        ASSERT_TRUE(bench.Calls().Dial(number));
        bench.RunFor(35'000);
        bench.ExpectRest(number);
    }
    ASSERT_TRUE(bench.Calls().Dial("10002"));
    bench.RunFor(3000);
    bench.Calls().HangUp();
    bench.RunFor(3000);
    bench.ExpectRest("given up");
    EXPECT_EQ(bench.Lists().dialled.FindCallRecord().size(), 4u);
    EXPECT_THAT(bench.Lists().missed.FindCallRecord(), IsEmpty());
    EXPECT_THAT(bench.Lists().received.FindCallRecord(), IsEmpty());
}

TEST_F(Calls, AreRedialledAtMostOnceASecondAndWithoutARecord) {
    bench.Calls().OnRedial();
    bench.RunFor(2000);
    EXPECT_FALSE(bench.Calls().Busy()) << "nothing was dialled yet";
    ASSERT_TRUE(bench.Calls().Dial("10000"));
    bench.RunFor(5000);
    bench.Calls().HangUp();
    bench.RunFor(3000);
    // A caller whose number must not end in the redialled call's record.
    bench.unit.Command("call 10010");
    bench.RunFor(4000);
    bench.unit.Command("hangup");
    bench.RunFor(3000);
    bench.unit.TakeTrace();
    bench.Calls().OnRedial();
    bench.Calls().OnRedial();
    bench.RunFor(5000);
    EXPECT_EQ(bench.Mode(), ScreenMode::InCall);
    EXPECT_EQ(bench.Value("HookDialed"), "1");
    EXPECT_EQ(bench.unit.Count("ATD10000;"), 1);
    bench.unit.Command("hangup");
    bench.RunFor(3000);
    bench.ExpectRest("after a redial");
    EXPECT_EQ(bench.Lists().dialled.FindCallRecord().size(), 1u);
    EXPECT_EQ(bench.Lists().missed.FindCallRecord().size(), 1u);
    EXPECT_THAT(bench.Lists().received.FindCallRecord(), IsEmpty());
}

TEST_F(Calls, AreNotDialledWithoutPowerNumberOrModule) {
    bench.unit.Command("power 19");
    EXPECT_FALSE(bench.Calls().Dial("10000"));
    bench.unit.Command("power 20");
    EXPECT_FALSE(bench.Calls().Dial(" "));
    EXPECT_FALSE(bench.Calls().Dial("123\r\nAT+CFUN=0"));
    EXPECT_FALSE(bench.Calls().Dial("12\"3"));
    EXPECT_FALSE(bench.Calls().Dial(std::string(300, '1')));
    bench.RunFor(1000);
    EXPECT_THAT(bench.Commands(), IsEmpty());
    for (const char* warning : {"warn 28", "warn 5", "warn 25"})
        EXPECT_EQ(bench.screens.Count(warning), 1) << warning;
    EXPECT_EQ(bench.screens.Count("warn 26"), 2);
    EXPECT_THAT(bench.Lists().dialled.FindCallRecord(), IsEmpty());
    ASSERT_TRUE(bench.Calls().Dial("10000")) << "20 is enough";
    bench.RunFor(1000);
    bench.dialog->CloseModule();
    bench.RunFor(5000);
    EXPECT_FALSE(bench.Calls().Dial("10000"));
    EXPECT_FALSE(bench.dialog->State().m_bSignalPolling) << "nor is anything polled";
}

TEST_F(Calls, GiveBackAudioAndLocksWhateverEndsThem) {
    const std::function<void()> ends[] = {
        [&] { bench.unit.Command("usb down"); },
        [&] { bench.unit.Command("vanish"); },
        [&] { bench.unit.Command("module restart"); },
        [&] { bench.dialog->CloseModule(); },
    };
    for (const auto& end : ends) {
        bench.unit.Command("call 10086");
        bench.RunFor(4000);
        bench.Calls().Answer();
        bench.RunFor(2000);
        ASSERT_EQ(bench.Mode(), ScreenMode::InCall);
        end();
        bench.RunFor(8000);
        EXPECT_TRUE(bench.unit.AudioAtRest());
        EXPECT_FALSE(bench.Calls().Busy());
        bench.unit.Command("usb up");
        bench.unit.Command("appear");
        bench.dialog->OpenModule();
        ASSERT_TRUE(bench.RunUntil([&] { return bench.Mode() == ScreenMode::Idle; }, 200'000));
        bench.RunFor(1000);
        bench.ExpectRest("after an end by force");
    }
    bench.unit.Command("call 10086");
    bench.RunFor(4000);
    bench.Calls().Answer();
    bench.RunFor(2000);
    bench.Quit();
    EXPECT_TRUE(bench.unit.AudioAtRest());
    EXPECT_EQ(bench.unit.SuspendLocks(), 0);
    EXPECT_EQ(bench.Lists().received.FindCallRecord().size(), std::size(ends) + 1);
}

TEST_F(Calls, TakeTheNumberFromReportsOfEveryShape) {
    struct Row {
        const char* report;
        const char* caller;
    };
    const Row rows[] = {
        {"+CLIP: \"13800138000\",129", "caller 13800138000 IDS_RING"},
        {"+CLIP: \"\",128", "caller IDS_UNKNOWN_CALLER IDS_RING"},
        {"+CLIP: \"123", "caller 123 IDS_RING"},
        {"+CLIP: \"12 34\",129", "caller 12 IDS_RING"},
    };
    for (const Row& row : rows) {
        bench.unit.Command(std::string("urc ") + row.report);
        bench.unit.Command("urc RING");
        bench.RunFor(1000);
        EXPECT_EQ(bench.screens.Count(row.caller), 1) << row.report;
        bench.unit.Command("urc NO CARRIER");
        bench.RunFor(3000);
    }
    bench.unit.Command("urc +CLIP:");
    bench.RunFor(1000);
    EXPECT_EQ(bench.windows.CountPosted("_WAV_CALL_STATUS 0 1"), static_cast<int>(std::size(rows)));
    EXPECT_EQ(bench.Lists().missed.FindCallRecord().size(), 3u);
}

TEST_F(Calls, AreNoBusinessOfServiceCodes) {
    ASSERT_TRUE(bench.Calls().Dial("*100#"));
    bench.RunFor(10'000);
    EXPECT_THAT(bench.screens.Shown(), Contains(HasSubstr("ussd ")));
    bench.ExpectRest("after a service code");
    bench.unit.Command("call 10086");
    bench.RunFor(4000);
    bench.Calls().Answer();
    bench.RunFor(2000);
    EXPECT_EQ(bench.Mode(), ScreenMode::InCall) << "the one before does not count";
}

TEST_F(Calls, HoldBackTheAnnouncementOfMessages) {
    bench.unit.Command("call 10086");
    bench.RunFor(1000);
    bench.unit.Command("sms 10010 hello");
    bench.RunFor(8000);
    EXPECT_EQ(bench.Inbox().size(), 1u);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLIN 1 1"), 0);
    bench.unit.Command("hangup");
    bench.RunFor(6000);
    EXPECT_EQ(bench.windows.CountPosted("UM_CALLHOOKED 1 1"), 1);
}

// Calls in and out, messages, polls, lost links: everything is at rest in the end, with the records that the
// rules demand.
void LiveWithCalls(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    CallBench bench(seed);
    std::size_t dialled = 0;
    const bool dials = seed % 3 == 0;
    bool plain = !dials;  // nothing but calls and messages
    // A link that is back before anybody looks has taken the end of a call with it: only the user can know.
    std::uint64_t lost = 0;
    bool unseen = false;
    const auto happen = [&](std::string_view event) {
        constexpr std::uint64_t look = 1100;
        if (event == "usb down") lost = bench.runtime.Elapsed();
        if (event == "usb up" && bench.runtime.Elapsed() - lost < look) unseen = true;
        bench.unit.Command(event);
    };
    const char* const world[] = {"call 10086",     "call hidden",     "hangup",         "answer",
                                 "busy",           "sms 10010 hello", "usb down",       "usb up",
                                 "late 500ms",     "late 0s",         "module restart", "ussd-ask",
                                 "urc NO CARRIER", "urc OK",          "no-carrier"};
    for (int step = 0; step < 14; ++step) {
        bench.RunFor(static_cast<Ticks>(random() % 4000));
        const std::string_view event = world[random() % std::size(world)];
        happen(event);
        plain = plain && !event.starts_with("usb") && !event.starts_with("module");
        switch (dials ? random() % 10 : 2 + random() % 3) {
            case 0: dialled += bench.Calls().Dial("10000") ? 1 : 0; break;
            case 1: dialled += bench.Calls().Dial("10003") ? 1 : 0; break;
            case 2: bench.Calls().Answer(); break;
            case 3: bench.Calls().Reject(); break;
            case 4: bench.Calls().HangUp(); break;
            case 5: bench.Calls().OnRedial(); break;
            case 6: bench.dialog->Messages().SendSMDll("13800000000", "mine"); break;
            case 7: dialled += bench.Calls().Dial("*100#") ? 1 : 0; break;
            case 8: random() % 4 == 0 ? bench.dialog->CloseModule() : bench.dialog->OpenModule(); break;
            default: break;
        }
    }
    for (const char* remedy : {"usb up", "calm", "hangup"})
        happen(remedy);
    const std::string where = "seed " + std::to_string(seed);
    bench.RunFor(90'000);  // by then a lost link has been noticed, also behind a message without a result
    bench.unit.Command("hangup");
    if (unseen) bench.Calls().HangUp();
    bench.dialog->OpenModule();
    EXPECT_TRUE(
        bench.RunUntil([&] { return bench.Mode() == ScreenMode::Idle && !bench.Calls().Busy(); }, 300'000))
        << where;
    bench.RunFor(20'000);
    if (bench.Calls().Busy()) {  // 10003 has called back
        bench.Calls().Reject();
        bench.RunFor(20'000);
    }
    bench.ExpectRest(where);
    EXPECT_LE(bench.Lists().dialled.FindCallRecord().size(), dialled) << where;
    // Each caller whose number was reported has left one record, and nobody else has; only one who rings in
    // the moment of dialling, or while the module is opened, may leave none.
    const int reported = bench.windows.CountPosted("_WAV_CALL_STATUS 0 1");
    const int hidden = bench.screens.Count("caller IDS_UNKNOWN_CALLER IDS_RING");
    const std::size_t records =
        bench.Lists().received.FindCallRecord().size() + bench.Lists().missed.FindCallRecord().size();
    EXPECT_LE(records, static_cast<std::size_t>(reported - hidden)) << where;
    if (plain) {
        EXPECT_EQ(records, static_cast<std::size_t>(reported - hidden)) << where;
    }
    for (const auto* list : {&bench.Lists().received, &bench.Lists().missed}) {
        for (const std::string& record : CallBench::Shown(const_cast<CallList&>(*list)))
            EXPECT_TRUE(record == "10086 10086" || record == "10003 10003") << record << ", " << where;
    }
}

TEST(CallSchedules, EndAtRest) {
    ForEachSeed(2000, LiveWithCalls);
}

}  // namespace
}  // namespace varkel::test
