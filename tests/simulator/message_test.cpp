#include <gtest/gtest.h>

#include "simulator/bytes.h"
#include "simulator/submit_pdu.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

// From 138001380, "AB" in UCS2; the service centre's address takes eight octets.
const std::string deliver =
    "0891683108100005F0040B813108108300F0000890808041210000"
    "0400410042";

struct Submitted {
    const char* name;
    std::string pdu;
    std::size_t announced;
    PduFault fault;
};

TEST(SubmitPdu, IsCheckedFieldByField) {
    const std::string head = "0011000D91896745230189F70008";
    const std::string full = std::string(280, 'A');
    const Submitted cases[] = {
        {"as required", "0891214365870921F311000D91896745230189F70008000400410042", 19, PduFault::None},
        {"no centre", head + "000400410042", 19, PduFault::None},
        {"an empty centre of two octets", "0191" + head.substr(2) + "000400410042", 19, PduFault::None},
        {"announced too short", head + "000400410042", 18, PduFault::WrongLength},
        {"announced too long", head + "000400410042", 20, PduFault::WrongLength},
        {"a centre past the end", "20" + head.substr(2), 13, PduFault::CutShort},
        {"nothing", "", 0, PduFault::CutShort},
        {"only a centre", "00", 0, PduFault::CutShort},
        {"a delivery", "0010" + head.substr(4) + "000400410042", 19, PduFault::NotSubmit},
        {"address past the end", "0011000D918967", 6, PduFault::CutShort},
        {"address of 255 digits", "001100FF91896745230189F700080004", 15, PduFault::CutShort},
        {"text past the end", head + "0004004100", 18, PduFault::CutShort},
        {"text left over", head + "00040041004200", 20, PduFault::LeftOver},
        {"140 octets", head + "008C" + full, 155, PduFault::None},
        {"141 octets", head + "008D" + full + "AA", 156, PduFault::TextTooLong},
        {"a length that wrapped to nothing", head + "0000" + full + full.substr(0, 232), 271,
         PduFault::TextTooLong},
        {"seven bits", "0011000B818310832143F500000005E8329BFD06", 19, PduFault::None},
        {"seven bits, one octet short", "0011000B818310832143F500000005E8329BFD", 18, PduFault::CutShort},
        {"160 characters of seven bits", "0011000B818310832143F5000000A0" + full, 154, PduFault::None},
        {"161 characters of seven bits", "0011000B818310832143F5000000A1" + full + "AA", 155,
         PduFault::TextTooLong},
        {"absolute validity", "001900038121F3000801020304050607020041", 18, PduFault::None},
    };
    for (const Submitted& each : cases) {
        const auto octets = BytesFromHex(each.pdu);
        ASSERT_TRUE(octets) << each.name;
        EXPECT_EQ(TextOf(CheckSubmitPdu(*octets, each.announced)), TextOf(each.fault)) << each.name;
    }
}

TEST(Messages, AreSentBehindAPrompt) {
    BenchUnit bench;
    bench.Start();
    EXPECT_EQ(bench.Ask("AT+CMGS=19"), "|> ");
    const std::string pdu = "0011000D91896745230189F70008000400410042";
    bench.unit.HostWrites(pdu + "\x1A", bench.now);
    EXPECT_EQ(bench.Pass(1499), "");
    EXPECT_EQ(bench.Pass(1), "|+CMGS: 1||OK|");
    ASSERT_EQ(bench.sent.size(), 1u);
    EXPECT_EQ(HexFromBytes(bench.sent[0]), pdu);
    EXPECT_EQ(bench.commands.back(), pdu);

    EXPECT_EQ(bench.Ask("AT+CMGS=19"), "|> ");
    bench.unit.HostWrites("whatever\x1B", bench.now);
    EXPECT_EQ(bench.Pass(500), "|OK|") << "given up";
    EXPECT_EQ(bench.Ask("AT+CMGS=19"), "|> ");
    bench.unit.HostWrites("no hexadecimal text\x1A", bench.now);
    EXPECT_EQ(bench.Pass(2000), "|+CMS ERROR: invalid PDU mode parameter|");
    EXPECT_EQ(bench.Ask("AT+CMGS=19"), "|> ");
    bench.unit.HostWrites(std::string(10'000, '0'), bench.now);
    bench.unit.HostWrites("\x1A", bench.now);
    EXPECT_EQ(bench.Pass(2000), "|+CMS ERROR: invalid PDU mode parameter|") << "endless text, bounded";
    for (const std::string_view length : {"0", "166", "-1", ""}) {
        EXPECT_EQ(bench.Ask("AT+CMGS=" + std::string(length)), "|+CMS ERROR: invalid PDU mode parameter|");
    }
    bench.Do({"network off"});
    EXPECT_EQ(bench.Ask("AT+CMGS=19"), "|> ");
    bench.unit.HostWrites(pdu + "\x1A", bench.now);
    EXPECT_EQ(bench.Pass(2000), "|+CMS ERROR: no network service|");
    EXPECT_EQ(bench.sent.size(), 1u);
}

TEST(Messages, HoldReportsBackWhileOneIsEntered) {
    BenchUnit bench;
    bench.Start();
    EXPECT_EQ(bench.Ask("AT+CMGS=19"), "|> ");
    bench.Do({"urc RING"});
    EXPECT_EQ(bench.Pass(100), "");
    bench.unit.HostWrites("\x1B", bench.now);
    EXPECT_EQ(bench.Pass(500), "|OK||RING|");
}

TEST(Messages, ArriveOnTheSimAndAreReadFromIt) {
    BenchUnit bench;
    bench.Start();
    const std::string pdu = *BytesFromHex(deliver);
    EXPECT_TRUE(bench.unit.GetModem().Deliver(pdu, bench.now));
    EXPECT_EQ(bench.Pass(0), "") << "no report was asked for";
    EXPECT_EQ(bench.Ask("AT+CNMI=2,1"), "|OK|");
    EXPECT_TRUE(bench.unit.GetModem().Deliver(pdu, bench.now));
    EXPECT_EQ(bench.Pass(0), "|+CMTI: \"SM\",2|");
    EXPECT_EQ(bench.Ask("AT+CPMS?"), "|+CPMS: \"SM\",2,20,\"SM\",2,20,\"SM\",2,20||OK|");
    const std::string octets = std::to_string(pdu.size() - 9);
    EXPECT_EQ(bench.Ask("AT+CMGR=2"), "|+CMGR: 0,," + octets + "|" + deliver + "||OK|");
    EXPECT_EQ(bench.Ask("AT+CMGR=2"), "|+CMGR: 1,," + octets + "|" + deliver + "||OK|") << "read by now";
    EXPECT_EQ(bench.Ask("AT+CMGL=1"), "|+CMGL: 2,1,," + octets + "|" + deliver + "||OK|");
    EXPECT_EQ(bench.Ask("AT+CMGD=2"), "|OK|");
    EXPECT_EQ(bench.Ask("AT+CMGR=2"), "|+CMS ERROR: invalid memory index|");
    EXPECT_EQ(bench.Ask("AT+CMGD=2"), "|OK|") << "deleting nothing is no mistake";
    EXPECT_EQ(bench.Ask("AT+CMGD=0"), "|+CMS ERROR: invalid memory index|");
    EXPECT_EQ(bench.Ask("AT+CMGD=21"), "|+CMS ERROR: invalid memory index|");
    EXPECT_EQ(bench.Ask("AT+CMGD=1,1"), "|OK|");
    EXPECT_EQ(bench.unit.Sim().messages.Used(), 1) << "unread messages stay";
    EXPECT_EQ(bench.Ask("AT+CMGD=1,4"), "|OK|");
    EXPECT_EQ(bench.unit.Sim().messages.Used(), 0);

    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(bench.unit.GetModem().Deliver(pdu, bench.now));
    EXPECT_FALSE(bench.unit.GetModem().Deliver(pdu, bench.now)) << "full";
    bench.Do({"network off"});
    bench.Ask("AT+CMGD=3");
    EXPECT_FALSE(bench.unit.GetModem().Deliver(pdu, bench.now)) << "out of reach";
}

TEST(Messages, KeepTheServiceCentre) {
    BenchUnit bench;
    bench.Start();
    EXPECT_EQ(bench.Ask("AT+CSCA=\"10086\""), "|OK|");
    EXPECT_EQ(bench.Ask("AT+CSCA?"), "|+CSCA: \"10086\",129||OK|");
    EXPECT_EQ(bench.Ask("AT+CSCA=\"12a\""), "|+CMS ERROR: invalid PDU mode parameter|");
    EXPECT_EQ(bench.Ask("AT+CSCA=\"+\""), "|+CMS ERROR: invalid PDU mode parameter|");
    EXPECT_EQ(bench.Ask("AT+CMGF=1"), "|+CMS ERROR: operation not supported|");
}

}  // namespace
}  // namespace varkel::sim
