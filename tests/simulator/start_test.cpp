// Power, start and what the module reports of it.
#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

TEST(Start, BringsTheDeviceAndThenTheModule) {
    BenchUnit bench;
    EXPECT_EQ(bench.Driver(DrvFunction::Get3GPower), 0);
    EXPECT_FALSE(bench.unit.LinePresent());
    EXPECT_FALSE(bench.unit.NextDeadline()) << "nothing happens in a module that is off";
    bench.Driver(DrvFunction::Set3GPower, 1);
    EXPECT_EQ(bench.Driver(DrvFunction::Get3GPower), 1);
    bench.unit.HostWrites("AT\r", bench.now);
    EXPECT_EQ(bench.Pass(1999), "");
    EXPECT_EQ(bench.Driver(DrvFunction::GetUsbHostStatus), 0);
    bench.Pass(1);
    EXPECT_EQ(bench.Driver(DrvFunction::GetUsbHostStatus), 1);
    EXPECT_TRUE(bench.unit.LinePresent());
    EXPECT_EQ(bench.Ask("AT"), "AT\r|OK|") << "what came before the device was there is lost";
    EXPECT_EQ(bench.Ask("ATE0"), "ATE0\r|OK|");
    EXPECT_EQ(bench.Ask("AT+URCIND=1"), "|OK|");
    EXPECT_EQ(bench.Pass(1499), "");
    EXPECT_EQ(bench.Pass(1), "|+URCIND:5|");

    bench.unit.HostWrites("AT+CLVL=5\rAT+CSQ\r", bench.now);
    bench.Driver(DrvFunction::Set3GPower, 0);
    EXPECT_EQ(bench.Pass(60'000), "");
    EXPECT_FALSE(bench.unit.LinePresent());
    EXPECT_FALSE(bench.unit.NextDeadline());
    bench.Start();
    EXPECT_EQ(bench.Ask("AT+CLVL?"), "|+CLVL: 3||OK|") << "settings do not outlive the power";
}

struct Reported {
    const char* name;
    std::initializer_list<std::string_view> setup;
    std::string_view atStart;
    std::string_view afterPin;
};

TEST(Start, IsReportedAccordingToTheSim) {
    const Reported cases[] = {
        {"open", {}, "|+URCIND:5|", ""},
        {"locked", {"pin 1234"}, "|+URCIND:3|", "|+URCIND:5|"},
        {"blocked", {"puk 12345678"}, "|+URCIND:3|", ""},
        {"absent", {"sim out"}, "|+URCIND:3|", ""},
        {"ready although locked", {"pin 1234", "start-report always-ready"}, "|+URCIND:5|", ""},
        {"three although ready", {"start-report always-no-sim"}, "|+URCIND:3|", ""},
        {"never", {"start-report never"}, "", ""},
        {"a slow card", {"time sim-start 6s"}, "|+URCIND:5|", ""},
    };
    for (const Reported& each : cases) {
        BenchUnit bench;
        bench.Do(each.setup);
        bench.Driver(DrvFunction::Set3GPower, 1);
        bench.Pass(2000);
        bench.Ask("ATE0");
        bench.Ask("AT+URCIND=1");
        EXPECT_EQ(bench.Pass(10'000), each.atStart) << each.name;
        if (each.atStart == "|+URCIND:3|" && each.afterPin.empty()) continue;
        bench.unit.HostWrites("AT+CPIN=1234\r", bench.now);
        const std::string after = bench.Pass(10'000);
        EXPECT_EQ(after.find("URCIND") != std::string::npos, !each.afterPin.empty()) << each.name << after;
    }
}

TEST(Start, IsToldAgainToWhoAsksLate) {
    BenchUnit bench;
    bench.Start();
    EXPECT_EQ(bench.Pass(60'000), "") << "nobody asked";
    EXPECT_EQ(bench.Ask("AT+URCIND=1"), "|OK||+URCIND:5|");
    EXPECT_EQ(bench.Ask("AT+URCIND?"), "|+URCIND: 1||OK|");
    bench.Do({"sim out"});
    EXPECT_EQ(bench.Pass(0), "|+URCIND:3||+CSMINS: 1,0|");
}

TEST(Start, LosesTheLinkInTwoWays) {
    BenchUnit bench;
    bench.Start();
    bench.Do({"usb down"});
    EXPECT_EQ(bench.Driver(DrvFunction::GetUsbHostStatus), 0);
    EXPECT_TRUE(bench.unit.LinePresent()) << "only the link fails";
    EXPECT_EQ(bench.Ask("AT"), "");
    bench.Do({"usb up"});
    EXPECT_EQ(bench.Ask("AT"), "|OK|");

    bench.unit.HostWrites("AT\r", bench.now);
    bench.Do({"vanish"});
    EXPECT_FALSE(bench.unit.LinePresent());
    EXPECT_EQ(bench.Driver(DrvFunction::GetUsbHostStatus), 0);
    EXPECT_EQ(bench.Pass(1000), "") << "what was under way is lost";
    EXPECT_FALSE(bench.unit.Command("urc RING", bench.now).well);
    bench.Do({"appear"});
    EXPECT_EQ(bench.Ask("AT"), "|OK|") << "the module went on meanwhile";
}

}  // namespace
}  // namespace varkel::sim
