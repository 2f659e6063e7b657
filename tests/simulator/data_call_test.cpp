// Packet-data calls: when they come up, how they end, and what the dialling program says of it.
#include <gtest/gtest.h>
#include <utility>

#include "simulator/dial_options.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

const std::string connects =
    "Serial connection established.|Using interface ppp0|Connect: ppp0 <--> the modem|";
const std::string up =
    connects + "PAP authentication succeeded|local  IP address 10.20.30.40|remote IP address 127.0.0.1|";

// A module with an access point, unless that is to be missing.
struct DataBench : test::BenchUnit {
    explicit DataBench(std::string_view accessPoint = "AT+CGDCONT=1,\"IP\",\"CMNET\"") {
        Start();
        Ask(accessPoint);
    }
    void Dial() { unit.DialData("somebody", now); }
    // What the dialling program prints in that time.
    std::string Prints(Millis time) {
        Pass(time);
        return std::exchange(dialled, "");
    }
};

TEST(DataCallTest, ComesUpAndIsLostWithWhatCarriesIt) {
    const std::string lost = "Modem hangup|Connection terminated.|=16";
    struct Case {
        const char* event;
        std::string prints;
        const char* heard;  // on the line, where the other call ends as well
    };
    const Case cases[] = {
        {"network off", lost, "|NO CARRIER|"},
        {"sim out", lost, "|NO CARRIER||+CSMINS: 1,0|"},
        {"module off", lost, ""},
        {"module restart", lost, ""},
        {"vanish", lost, ""},
        {"usb down", lost, ""},
        {"data drop", "LCP terminated by peer|Connection terminated.|=0", ""},
        {"data deaf", "local  IP address 10.20.30.40|remote IP address 127.255.255.255|", ""},
        {"signal 0", "", ""},
    };
    for (const auto& [event, prints, heard] : cases) {
        SCOPED_TRACE(event);
        DataBench bench;
        bench.Dial();
        EXPECT_EQ(bench.Prints(999), "");
        EXPECT_EQ(bench.Prints(501), up);
        EXPECT_EQ(bench.Command("data"), "up, normal");
        bench.Converse({{"!call 10010", "|RING|"}, {"ATA", "|OK|"}});
        bench.Do({event});
        EXPECT_EQ(bench.Pass(10'000), heard);
        EXPECT_EQ(bench.Prints(0), prints);
        EXPECT_EQ(bench.unit.GetModem().CurrentCall().Phase() == CallPhase::Idle, prints == lost);
        EXPECT_EQ(bench.unit.Command("data drop", bench.now).well, prints.find('=') == std::string::npos);
    }
}

TEST(DataCallTest, FailsForAReason) {
    const std::string failed = "Connect script failed|=8";
    const std::pair<const char*, std::string> cases[] = {
        {"signal 99", failed},
        {"signal 0", failed},
        {"network off", failed},
        {"vanish", "Failed to open the modem: No such file or directory|=7"},
        {"data refuse", connects + "PAP authentication failed|Connection terminated.|=19"},
        {"data silent", ""},
    };
    for (const auto& [command, prints] : cases) {
        DataBench bench;
        bench.Do({command});
        bench.Dial();
        EXPECT_EQ(bench.Prints(600'000), prints) << command;
    }
    DataBench bench("AT");
    bench.Dial();
    EXPECT_EQ(bench.Prints(2'000), failed);
    EXPECT_EQ(bench.networkSaid.back(), "data call fails: no access point was set");
}

TEST(DataCallTest, IsHungUpByTheProgramOrLeftToTheNextOne) {
    const std::pair<Millis, std::string> cases[] = {
        {500, "Terminating on signal 15|=5"},
        {2'000, "Terminating on signal 15|Connection terminated.|=5"},
    };
    for (const auto& [after, prints] : cases) {
        DataBench bench;
        bench.Dial();
        bench.Prints(after);
        bench.unit.HangUpData(bench.now);
        EXPECT_EQ(bench.Prints(10'000), prints);
        bench.unit.HangUpData(bench.now);
        bench.Dial();
        EXPECT_EQ(bench.Prints(700), "");
        bench.Dial();  // the one before was killed
        EXPECT_EQ(bench.Prints(700), "");
        bench.unit.AbandonData(bench.now);
        EXPECT_EQ(bench.Prints(10'000), "") << "nobody is there to be told";
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
