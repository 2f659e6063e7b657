// Thousands of seeds: each chooses the order of all threads and what goes wrong with the module meanwhile.
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "tests/session/open_module.h"
#include "tests/support/seeds.h"

namespace varkel::test {
namespace {

const char* const troubles[] = {"usb down",       "usb up",
                                "vanish",         "appear",
                                "module restart", "sim out",
                                "sim in",         "signal 3",
                                "signal 20",      "network off",
                                "network on",     "split 1",
                                "split 7",        "split 0",
                                "noise 0.001",    "noise 0",
                                "late 2s",        "late 0s",
                                "lose 0.1",       "lose 0",
                                "double 0.2",     "double 0",
                                "urc RING",       "urc +URCIND:3",
                                "urc +URCIND:5",  "urc +CME ERROR: SIM busy",
                                "urc BUSY",       "urc ERROR",
                                "urc OK",         "urc +CPIN: SIM PUK",
                                "raw \\r\\n> ",   "sms 10086 hello",
                                "sms-burst 3",    "sms-raw 0791",
                                "sms-fail 1",     "sms-no-prompt 1",
                                "sms-no-result 1"};

struct Life {
    std::uint64_t hash = 0;  // of the trace
    bool opened = false;     // the module was open at some time
    bool operator==(const Life&) const = default;
};

// What other programs and the dial-up service do meanwhile.
void Meddle(SessionBench& bench, std::mt19937_64& random) {
    const auto number = static_cast<std::uint32_t>(random() % 3);
    switch (random() % 8) {
        case 0: bench.Post(WM_USER + 1000 + static_cast<MessageId>(random() % 6), 0x4242); break;
        case 1: {
            const char* const names[] = {"3Gwindow_SHOW", "3Gwindow_HIDE", "Network_interface", "UM_QX_CALL",
                                         "NEED_CLOSE_USB_HOST"};
            bench.Post(names[random() % std::size(names)], number, number);
            break;
        }
        case 2: bench.dialog->OnKey(0x5F); break;
        case 3: bench.dialog->OnKey(0xEE); break;
        case 4: bench.dialog->Data().OpenNet(); break;
        case 5: bench.dialog->Data().RasHangUp(); break;
        case 6: bench.dialUp.Report(random() % 2 == 0 ? RasState::Connected : RasState::Disconnected); break;
        default: (void)bench.windows.CopyData("3Gwindow", number, std::vector<std::byte>(70, std::byte{'1'}));
    }
}

// One life of the program under random trouble.
Life Live(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    SessionBench bench(seed);
    if (random() % 2 == 0) bench.Happen("pin 1234");
    if (random() % 4 == 0) bench.Happen("puk 12345678");
    for (int i = 0; i < 3; ++i)
        bench.screens.Type(random() % 2 == 0 ? "1234" : "12345678", "1234");
    bench.dialUp.connects = random() % 2 == 0;
    bench.dialUp.refusal = random() % 8 == 0 ? RasError::Busy : RasError::None;
    bench.icmp.allSilent = random() % 2 == 0;
    Life life;
    bench.Start(random() % 2 == 0 ? "1" : "");
    bench.dialog->OpenModule();
    for (int step = 0; step < 8 && !bench.loop.Quitting(); ++step) {
        bench.RunFor(static_cast<Ticks>(random() % 9000));
        life.opened |= bench.Mode() != ScreenMode::Closed;
        bench.Happen(troubles[random() % std::size(troubles)]);
        Meddle(bench, random);
        switch (random() % 8) {
            case 0: bench.dialog->CloseModule(); break;
            case 1: bench.dialog->OpenModule(); break;
            case 2: bench.dialog->CancelOpen(); break;
            case 3: bench.dialog->Messages().SendSMDll("13800000000", "hello"); break;
            default: break;
        }
    }
    // With everything well again the program ends in order, whatever it was in.
    bench.Arrange({"usb up", "appear", "noise 0", "late 0s", "lose 0", "double 0", "split 0"});
    const std::uint64_t start = bench.runtime.Elapsed();
    bench.Quit();
    EXPECT_EQ(bench.dialUp.Current(), RasHandle::None) << "seed " << seed;
    EXPECT_EQ(bench.dialog->State().m_dataState, DataState::Off) << "seed " << seed;
    EXPECT_LE(bench.runtime.Elapsed() - start, 15'000u) << "seed " << seed;
    ExpectClosed(bench, "seed " + std::to_string(seed));
    life.hash = bench.runtime.TraceHash();
    return life;
}

TEST(Schedules, EndInOrderUnderAnyTrouble) {
    std::uint64_t opened = 0;
    const std::uint64_t lives =
        ForEachSeed(2000, [&opened](std::uint64_t seed) { opened += Live(seed).opened ? 1 : 0; });
    if (lives < 100) return;
    EXPECT_GT(opened, lives / 20) << "too few lives got as far as an open module";
}

TEST(Schedules, AreTheSameForTheSameSeed) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
        EXPECT_EQ(Live(seed), Live(seed)) << "seed " << seed;
    EXPECT_NE(Live(1).hash, Live(2).hash);
}

// Messages arrive while links are lost and modules restart: each is in the inbox in the end, and once.
void KeepMessages(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    SessionBench bench(seed);
    bench.Start("");
    bench.dialog->OpenModule();
    bench.RunFor(10'000);
    const char* const world[] = {"usb down",        "usb up",   "vanish",          "appear",
                                 "module restart",  "urc RING", "sms-no-prompt 1", "sms-fail 1",
                                 "sms-no-result 1", "prompt"};
    int sent = 0;
    for (int step = 0; step < 12; ++step) {
        bench.RunFor(static_cast<Ticks>(random() % 4000));
        switch (random() % 6) {
            case 0: bench.Happen(world[random() % std::size(world)]); break;
            case 1: random() % 2 == 0 ? bench.dialog->CloseModule() : bench.dialog->OpenModule(); break;
            case 2: bench.dialog->Messages().SendSMDll("13800000000", "mine"); break;
            default: bench.Happen("sms 10010 \"number " + std::to_string(++sent) + "\""); break;
        }
    }
    bench.Arrange({"usb up", "appear", "calm"});
    bench.RunFor(60'000);
    bench.dialog->OpenModule();
    bench.RunFor(60'000);
    // Its announcement also brings to light what was announced over a line that was down.
    bench.Happen("sms 10010 \"number " + std::to_string(++sent) + "\"", 240'000);

    std::multiset<std::string> kept;
    for (const SmsRecord& record : bench.dialog->Messages().Boxes().inbox.FindSmsRecord())
        kept.emplace(record.szContent.View());
    for (int number = 1; number <= sent; ++number)
        EXPECT_EQ(kept.count("number " + std::to_string(number)), 1u)
            << "number " << number << ", seed " << seed;
    EXPECT_EQ(kept.size(), static_cast<std::size_t>(sent)) << "seed " << seed;
}

TEST(Schedules, LoseNoMessage) {
    KeepMessages(93053);  // an answer is lost with the link, and forgotten just before it is late
    ForEachSeed(500, KeepMessages);
}

}  // namespace
}  // namespace varkel::test
