// Calls in and out, and everything that can end them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "tests/session/open_module.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::SizeIs;

struct CallBench : OpenBench {
    explicit CallBench(std::uint64_t seed = 1) : OpenBench(seed) {}

    void MissCall(const std::string& from) {
        Happen("call " + from, 4000);
        Happen("hangup", 3000);
    }
    void TakeCall(const std::string& from) {
        Happen("call " + from, 4000);
        calls.Answer();
        RunFor(2000);
        EXPECT_EQ(Mode(), ScreenMode::InCall) << from;
    }
    bool Dial(const std::string& number, Ticks time) {
        const bool begun = calls.Dial(number);
        RunFor(time);
        return begun;
    }
    void HangUp() {
        calls.HangUp();
        RunFor(3000);
    }
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
        EXPECT_FALSE(calls.Busy()) << where;
    }

    CallControl& calls = dialog->Calls();
    CallLists& lists = calls.Lists();
};

struct Calls : testing::Test, CallBench {};

TEST_F(Calls, AreAnsweredAndRecordedAsReceived) {
    Happen("call +8613800138000", 4000);
    EXPECT_EQ(windows.CountPosted("_WAV_CALL_STATUS 0 1"), 1) << "once a call";
    EXPECT_EQ(windows.CountPosted("UM_CALLIN 0 0"), 2) << "with each ring";
    EXPECT_THAT(screens.Shown(), Contains("caller +8613800138000 IDS_RING"));
    EXPECT_THAT(sound.Played(), Contains("\\ResidentFlash2\\bin\\ring.wav"));
    unit.TakeTrace();
    RunFor(15'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 0) << "no poll while it rings";

    calls.Answer();
    RunFor(2000);
    EXPECT_EQ(Mode(), ScreenMode::InCall);
    EXPECT_EQ(Value("CallStatus"), "+8613800138000");
    EXPECT_EQ(Value("HookDialed"), "0");
    EXPECT_EQ(unit.SuspendLocks(), 2);
    EXPECT_FALSE(unit.AudioAtRest());
    calls.ToggleSpeaker();
    calls.SendTone("5");
    calls.SendTone("12");
    RunFor(500);
    EXPECT_THAT(unit.TakeTrace(), testing::IsSupersetOf({"SetGprsHpSpkStatus 1", "AT+VTS=5"}));

    Happen("hangup", 2000);
    ExpectRest("after the call");
    EXPECT_THAT(Shown(lists.received), ElementsAre("+8613800138000 +8613800138000"));
    EXPECT_THAT(Shown(lists.missed), IsEmpty());
    EXPECT_EQ(windows.CountPosted("UM_CALLHOOKED 0 0"), 1);
    RunFor(20'000);
    EXPECT_GE(unit.Count("AT+CSQ"), 2) << "the poll goes on";
}

TEST_F(Calls, AreMissedRejectedOrEndUnreported) {
    MissCall("10086");
    Happen("call 10010", 4000);
    calls.Reject();
    RunFor(3000);
    MissCall("hidden");
    EXPECT_THAT(Shown(lists.missed), ElementsAre("10086 10086", "10010 10010"))
        << "a hidden caller leaves no record, and not the one of an earlier caller";
    ExpectRest("after three calls");
    Happen("urc RING", 5000);
    EXPECT_TRUE(calls.Busy());
    RunFor(8000);
    ExpectRest("after a ring without an end");
}

TEST_F(Calls, AreDialledAndRecordedAtOnce) {
    ASSERT_TRUE(Dial("10000", 1000));
    EXPECT_THAT(Shown(lists.dialled), ElementsAre("10000 10000"));
    EXPECT_THAT(screens.Shown(), Contains("status IDS_CALLING 10000"));
    EXPECT_EQ(Mode(), ScreenMode::Idle);
    RunFor(4000);
    EXPECT_EQ(Mode(), ScreenMode::InCall);
    EXPECT_EQ(Value("CallStatus"), "1");
    EXPECT_EQ(Value("HookDialed"), "1");
    EXPECT_FALSE(calls.Dial("10086")) << "the line is taken";
    HangUp();
    ExpectRest("after an answered call");

    for (const char* number : {"10001", "10002"}) {  // busy, never answered
        ASSERT_TRUE(Dial(number, 35'000));
        ExpectRest(number);
    }
    ASSERT_TRUE(Dial("10002", 3000));
    HangUp();
    ExpectRest("given up");
    EXPECT_THAT(Shown(lists.dialled), SizeIs(4));
    EXPECT_THAT(Shown(lists.missed), IsEmpty());
    EXPECT_THAT(Shown(lists.received), IsEmpty());
}

TEST_F(Calls, AreRedialledAtMostOnceASecondAndWithoutARecord) {
    calls.OnRedial();
    RunFor(2000);
    EXPECT_FALSE(calls.Busy()) << "nothing was dialled yet";
    ASSERT_TRUE(Dial("10000", 5000));
    HangUp();
    MissCall("10010");  // whose number must not end in the redialled call's record
    unit.TakeTrace();
    calls.OnRedial();
    calls.OnRedial();
    RunFor(5000);
    EXPECT_EQ(Mode(), ScreenMode::InCall);
    EXPECT_EQ(Value("HookDialed"), "1");
    EXPECT_EQ(unit.Count("ATD10000;"), 1);
    Happen("hangup", 3000);
    ExpectRest("after a redial");
    EXPECT_THAT(Shown(lists.dialled), SizeIs(1));
    EXPECT_THAT(Shown(lists.missed), SizeIs(1));
    EXPECT_THAT(Shown(lists.received), IsEmpty());
}

TEST_F(Calls, AreNotDialledWithoutPowerNumberOrModule) {
    Happen("power 19");
    EXPECT_FALSE(calls.Dial("10000"));
    Happen("power 20");
    const std::string numbers[] = {" ", "123\r\nAT+CFUN=0", "12\"3", std::string(300, '1')};
    for (const std::string& number : numbers)
        EXPECT_FALSE(Dial(number, 250)) << number;
    EXPECT_THAT(Commands(), IsEmpty());
    for (const char* warning : {"warn 28", "warn 5", "warn 25"})
        EXPECT_EQ(screens.Count(warning), 1) << warning;
    EXPECT_EQ(screens.Count("warn 26"), 2);
    EXPECT_THAT(Shown(lists.dialled), IsEmpty());
    ASSERT_TRUE(Dial("10000", 1000)) << "20 is enough";
    dialog->CloseModule();
    RunFor(5000);
    EXPECT_FALSE(calls.Dial("10000"));
    EXPECT_FALSE(dialog->State().m_bSignalPolling) << "nor is anything polled";
}

TEST_F(Calls, GiveBackAudioAndLocksWhateverEndsThem) {
    const std::string ends[] = {"usb down", "vanish", "module restart", ""};  // "" = the user closes it
    for (const std::string& end : ends) {
        TakeCall("10086");
        if (end.empty()) dialog->CloseModule();
        Happen(end, 8000);
        EXPECT_TRUE(unit.AudioAtRest());
        EXPECT_FALSE(calls.Busy());
        Arrange({"usb up", "appear"});
        dialog->OpenModule();
        ASSERT_TRUE(RunUntil([&] { return Mode() == ScreenMode::Idle; }, 200'000));
        RunFor(1000);
        ExpectRest(end);
    }
    ASSERT_TRUE(Dial("10002", 2000)) << "nobody answers";
    Happen("usb down", 8000);
    EXPECT_FALSE(calls.Busy());
    Happen("usb up", 0);
    ASSERT_TRUE(RunUntil([&] { return Mode() == ScreenMode::Idle; }, 200'000));
    TakeCall("10086");
    Quit();
    EXPECT_TRUE(unit.AudioAtRest());
    EXPECT_EQ(unit.SuspendLocks(), 0);
    EXPECT_THAT(Shown(lists.received), SizeIs(std::size(ends) + 1));
}

TEST_F(Calls, TakeTheNumberFromReportsOfEveryShape) {
    const std::pair<const char*, const char*> rows[] = {
        {"urc +CLIP: \"13800138000\",129", "caller 13800138000 IDS_RING"},
        {"urc +CLIP: \"\",128", "caller IDS_UNKNOWN_CALLER IDS_RING"},
        {"urc +CLIP: \"123", "caller 123 IDS_RING"},
        {"urc +CLIP: \"12 34\",129", "caller 12 IDS_RING"},
    };
    for (const auto& [report, caller] : rows) {
        Arrange({report, "urc RING"});
        RunFor(1000);
        EXPECT_EQ(screens.Count(caller), 1) << report;
        Happen("urc NO CARRIER", 3000);
    }
    Happen("urc +CLIP:", 1000);
    EXPECT_EQ(windows.CountPosted("_WAV_CALL_STATUS 0 1"), static_cast<int>(std::size(rows)));
    EXPECT_THAT(Shown(lists.missed), SizeIs(3));
}

TEST_F(Calls, AreNoBusinessOfServiceCodes) {
    ASSERT_TRUE(Dial("*100#", 10'000));
    EXPECT_THAT(screens.Shown(), Contains(HasSubstr("ussd ")));
    ExpectRest("after a service code");
    TakeCall("10086");  // the one before does not count
}

TEST_F(Calls, HoldBackTheAnnouncementOfMessages) {
    Happen("call 10086", 1000);
    Happen("sms 10010 hello", 8000);
    EXPECT_EQ(Inbox().size(), 1u);
    EXPECT_EQ(windows.CountPosted("UM_CALLIN 1 1"), 0);
    Happen("hangup", 6000);
    EXPECT_EQ(windows.CountPosted("UM_CALLHOOKED 1 1"), 1);
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
        bench.Happen(event);
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
            case 0: dialled += bench.calls.Dial("10000") ? 1 : 0; break;
            case 1: dialled += bench.calls.Dial("10003") ? 1 : 0; break;
            case 2: bench.calls.Answer(); break;
            case 3: bench.calls.Reject(); break;
            case 4: bench.calls.HangUp(); break;
            case 5: bench.calls.OnRedial(); break;
            case 6: bench.dialog->Messages().SendSMDll("13800000000", "mine"); break;
            case 7: dialled += bench.calls.Dial("*100#") ? 1 : 0; break;
            case 8: random() % 4 == 0 ? bench.dialog->CloseModule() : bench.dialog->OpenModule(); break;
            default: break;
        }
    }
    for (const char* remedy : {"usb up", "calm", "hangup"})
        happen(remedy);
    const std::string where = "seed " + std::to_string(seed);
    bench.RunFor(90'000);  // by then a lost link has been noticed, also behind a message without a result
    bench.Happen("hangup");
    if (unseen) bench.calls.HangUp();
    bench.dialog->OpenModule();
    EXPECT_TRUE(
        bench.RunUntil([&] { return bench.Mode() == ScreenMode::Idle && !bench.calls.Busy(); }, 300'000))
        << where;
    bench.RunFor(20'000);
    if (bench.calls.Busy()) {  // 10003 has called back
        bench.calls.Reject();
        bench.RunFor(20'000);
    }
    bench.ExpectRest(where);
    EXPECT_LE(CallBench::Shown(bench.lists.dialled).size(), dialled) << where;
    // Each caller whose number was reported has left one record, and nobody else has; only one who rings in
    // the moment of dialling, or while the module is opened, may leave none.
    const int reported = bench.windows.CountPosted("_WAV_CALL_STATUS 0 1") -
                         bench.screens.Count("caller IDS_UNKNOWN_CALLER IDS_RING");
    std::vector<std::string> records = CallBench::Shown(bench.lists.received);
    for (std::string& record : CallBench::Shown(bench.lists.missed))
        records.push_back(std::move(record));
    EXPECT_LE(static_cast<int>(records.size()), reported) << where;
    EXPECT_TRUE(!plain || static_cast<int>(records.size()) == reported) << where;
    EXPECT_THAT(records, Each(AnyOf("10086 10086", "10003 10003"))) << where;
}

TEST(CallSchedules, EndAtRest) {
    ForEachSeed(2000, LiveWithCalls);
}

}  // namespace
}  // namespace varkel::test
