// Packet-data calls: when they come up, how they end, and what the dialling program says of it.
#include <gtest/gtest.h>

#include "simulator/dial_options.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

constexpr std::string_view connects =
    "Serial connection established.|Using interface ppp0|Connect: ppp0 <--> the modem|";
constexpr std::string_view up = "local  IP address 10.20.30.40|remote IP address 127.0.0.1|";

struct Event {
    const char* command;  // of the console, while the call is there
    std::string_view prints;
};

TEST(DataCallTest, ComesUpAndIsLost) {
    const Event events[] = {
        {"data drop", "LCP terminated by peer|Connection terminated.|=0"},
        {"network off", "Modem hangup|Connection terminated.|=16"},
        {"sim out", "Modem hangup|Connection terminated.|=16"},
        {"module off", "Modem hangup|Connection terminated.|=16"},
        {"module restart", "Modem hangup|Connection terminated.|=16"},
        {"vanish", "Modem hangup|Connection terminated.|=16"},
        {"usb down", "Modem hangup|Connection terminated.|=16"},
        {"data deaf", "local  IP address 10.20.30.40|remote IP address 127.255.255.255|"},
        {"signal 0", ""},
    };
    for (const Event& event : events) {
        BenchUnit bench;
        bench.Start();
        bench.Ask("AT+CGDCONT=1,\"IP\",\"CMNET\"");
        bench.unit.DialData("somebody", bench.now);
        bench.Pass(999);
        EXPECT_EQ(bench.dialled, "");
        bench.Pass(501);
        EXPECT_EQ(bench.dialled, std::string(connects) + "PAP authentication succeeded|" + std::string(up));
        EXPECT_EQ(bench.unit.Command("data", bench.now).text, "up, normal");
        bench.dialled.clear();
        bench.Do({event.command});
        bench.Pass(10'000);
        EXPECT_EQ(bench.dialled, event.prints) << event.command;
        const bool over = event.prints.find('=') != std::string_view::npos;
        EXPECT_EQ(bench.unit.Command("data drop", bench.now).well, !over) << event.command;
    }
}

TEST(DataCallTest, FailsForAReason) {
    struct Case {
        std::initializer_list<std::string_view> setup;
        std::string prints;
    };
    const std::string failed = "Connect script failed|=8";
    const Case cases[] = {
        {{"signal 99"}, failed},
        {{"signal 0"}, failed},
        {{"network off"}, failed},
        {{"vanish"}, "Failed to open the modem: No such file or directory|=7"},
        {{"data refuse"}, std::string(connects) + "PAP authentication failed|Connection terminated.|=19"},
        {{"data silent"}, ""},
    };
    for (const Case& each : cases) {
        BenchUnit bench;
        bench.Start();
        bench.Ask("AT+CGDCONT=1,\"IP\",\"CMNET\"");
        bench.Do(each.setup);
        bench.unit.DialData("", bench.now);
        bench.Pass(600'000);
        EXPECT_EQ(bench.dialled, each.prints) << each.prints;
    }
    BenchUnit bench;
    bench.Start();
    bench.unit.DialData("", bench.now);
    bench.Pass(2'000);
    EXPECT_EQ(bench.dialled, failed);
    EXPECT_EQ(bench.networkSaid.back(), "data call fails: no access point was set");
}

TEST(DataCallTest, IsHungUpByTheProgram) {
    for (const bool connected : {false, true}) {
        BenchUnit bench;
        bench.Start();
        bench.Ask("AT+CGDCONT=1,\"IP\",\"CMNET\"");
        bench.unit.DialData("", bench.now);
        bench.Pass(connected ? 2'000 : 500);
        bench.dialled.clear();
        bench.unit.HangUpData(bench.now);
        EXPECT_EQ(bench.dialled, connected ? "Terminating on signal 15|Connection terminated.|=5"
                                           : "Terminating on signal 15|=5");
        bench.Pass(10'000);
        bench.unit.HangUpData(bench.now);
        bench.dialled.clear();
        // A program that was killed leaves its call to the next one.
        bench.unit.DialData("", bench.now);
        bench.Pass(700);
        bench.unit.DialData("", bench.now);
        bench.Pass(700);
        EXPECT_EQ(bench.dialled, "");
        bench.unit.AbandonData(bench.now);
        bench.Pass(10'000);
        EXPECT_EQ(bench.dialled, "") << "nobody is there to be told";
    }
}

TEST(DialOptionsTest, OfTheProgramThatItStandsForAreTheOnlyOnes) {
    const auto read = [](const std::string& path) {
        return path == "/self" ? std::optional<std::string>("file /file") : std::nullopt;
    };
    using Words = std::vector<std::string>;
    const std::pair<Words, std::string> faults[] = {
        {{}, "no device specified"},
        {{"call"}, "too few parameters for option call"},
        {{"call", "x", "persist"}, "unrecognized option 'persist'"},
        {{"call", "x", "file", "/none"}, "Can't read options file /none"},
        {{"call", "x", "file", "/self"}, "unrecognized option 'file'"},
        {{"call", "x", "logfd", "x"}, "logfd is no number"},
    };
    for (const auto& [words, fault] : faults)
        EXPECT_EQ(ParseDialOptions(words, read).fault, fault);
    EXPECT_EQ(OptionWords("a \"b"), std::nullopt);
    EXPECT_EQ(OptionWords("\"\" x#y \\"), (Words{"", "x#y", "\\"}));
}

}  // namespace
}  // namespace varkel::sim
