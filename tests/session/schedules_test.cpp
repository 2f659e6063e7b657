// Thousands of seeds: each chooses the order of all threads and what goes wrong with the module meanwhile.
#include <gtest/gtest.h>
#include <random>

#include "tests/support/seeds.h"
#include "tests/support/session_bench.h"

namespace varkel::test {
namespace {

const char* const troubles[] = {
    "usb down",       "usb up",
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
    "raw \\r\\n> ",
};

struct Life {
    std::uint64_t hash = 0;  // of the trace
    bool opened = false;     // the module was open at some time
    bool operator==(const Life&) const = default;
};

// One life of the program under random trouble.
Life Live(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    SessionBench bench(seed);
    if (random() % 2 == 0) bench.unit.Command("pin 1234");
    if (random() % 4 == 0) bench.unit.Command("puk 12345678");
    for (int i = 0; i < 3; ++i)
        bench.screens.Type(random() % 2 == 0 ? "1234" : "12345678", "1234");
    Life life;
    bench.Start(random() % 2 == 0 ? "1" : "");
    bench.dialog->OpenModule();
    for (int step = 0; step < 8 && !bench.loop.Quitting(); ++step) {
        bench.RunFor(static_cast<Ticks>(random() % 9000));
        life.opened |= bench.dialog->State().MainScreenMode != ScreenMode::Closed;
        bench.unit.Command(troubles[random() % std::size(troubles)]);
        switch (random() % 8) {
            case 0: bench.dialog->CloseModule(); break;
            case 1: bench.dialog->OpenModule(); break;
            case 2: bench.dialog->CancelOpen(); break;
            default: break;
        }
    }
    // With everything well again the program ends in order, whatever it was in.
    for (const char* remedy : {"usb up", "appear", "noise 0", "late 0s", "lose 0", "double 0", "split 0"}) {
        bench.unit.Command(remedy);
    }
    const std::uint64_t start = bench.runtime.Elapsed();
    bench.Quit();
    EXPECT_LE(bench.runtime.Elapsed() - start, 10'000u) << "seed " << seed;
    EXPECT_EQ(bench.unit.SuspendLocks(), 0) << "seed " << seed;
    EXPECT_EQ(bench.dialog->State().MainScreenMode, ScreenMode::Closed) << "seed " << seed;
    EXPECT_EQ(Settings(bench.registry).ReadOpenFlag(), 0u) << "seed " << seed;
    EXPECT_FALSE(bench.serial.Open()) << "seed " << seed;
    life.hash = bench.runtime.TraceHash();
    return life;
}

TEST(Schedules, EndInOrderUnderAnyTrouble) {
    const std::uint64_t seeds = SeedCount(2000);
    std::uint64_t opened = 0;
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        opened += Live(seed).opened ? 1 : 0;
        if (testing::Test::HasFailure()) break;
    }
    EXPECT_GT(opened, seeds / 20) << "too few lives got as far as an open module";
}

TEST(Schedules, AreTheSameForTheSameSeed) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
        EXPECT_EQ(Live(seed), Live(seed)) << "seed " << seed;
    EXPECT_NE(Live(1).hash, Live(2).hash);
}

}  // namespace
}  // namespace varkel::test
