// Messages: how the module sends and keeps them, and what the network does with them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

struct Messages : testing::Test, test::BenchUnit {
    Messages() { Start(); }
    std::size_t Waiting() { return unit.Messages().Waiting(); }
    // What comes behind the text that is entered at the prompt.
    std::string Enter(const std::string& text) {
        EXPECT_EQ(Ask("AT+CMGS=19"), "|> ");
        return Write(text, 2000);
    }
};

TEST_F(Messages, AreSentBehindAPrompt) {
    const std::string pdu = "0011000D91896745230189F70008000400410042";
    EXPECT_EQ(Ask("AT+CMGS=19"), "|> ");
    EXPECT_EQ(Write(pdu + "\x1A", 1499), "");
    EXPECT_EQ(Pass(1), "|+CMGS: 1||OK|");
    EXPECT_THAT(sent, testing::ElementsAre(*BytesFromHex(pdu)));
    EXPECT_EQ(commands.back(), pdu);

    constexpr std::string_view invalid = "|+CMS ERROR: invalid PDU mode parameter|";
    EXPECT_EQ(Enter("whatever\x1B"), "|OK|") << "given up";
    EXPECT_EQ(Enter("no hexadecimal text\x1A"), invalid);
    EXPECT_EQ(Enter(std::string(10'000, '0') + "\x1A"), invalid) << "endless text, bounded";
    for (const char* const command : {"AT+CMGS=0", "AT+CMGS=166", "AT+CMGS=-1", "AT+CMGS="})
        EXPECT_EQ(Ask(command), invalid) << command;
    Do({"network off"});
    EXPECT_EQ(Enter(pdu + "\x1A"), "|+CMS ERROR: no network service|");
    EXPECT_EQ(sent.size(), 1u);
    Converse({{"AT+CMGS=19", "|> "}, {"!urc RING", ""}});
    EXPECT_EQ(Write("\x1B"), "|OK||RING|") << "reports are held back while one is entered";
}

TEST_F(Messages, StandOnTheSimUntilTheyAreDeleted) {
    // From 138001380, "AB" in UCS2; the service centre's address takes eight octets.
    const std::string pdu = "0891683108100005F0040B813108108300F00008908080412100000400410042";
    const std::string shown = std::to_string(pdu.size() / 2 - 9) + "|" + pdu + "||OK|";
    const std::string deliver = "!sms-raw " + pdu;
    Converse({
        {deliver, ""},  // nobody has asked for reports
        {"AT+CNMI=2,1", "|OK|"},
        {deliver, "|+CMTI: \"SM\",2|"},
        {"AT+CPMS?", "|+CPMS: \"SM\",2,20,\"SM\",2,20,\"SM\",2,20||OK|"},
        {"AT+CMGR=2", "|+CMGR: 0,," + shown},
        {"AT+CMGL=1", "|+CMGL: 2,1,," + shown},  // read by now
        {"AT+CMGD=1,1", "|OK|"},                 // what was not read stays
        {"AT+CMGR=2", "|+CMS ERROR: invalid memory index|"},
        {"AT+CMGR=1", "|+CMGR: 0,," + shown},
        {"AT+CMGD=1", "|OK|"},
        {"AT+CMGD=1", "|OK|"},  // deleting nothing is no mistake
        {"AT+CMGR=1", "|+CMS ERROR: invalid memory index|"},
        {"AT+CMGD=0", "|+CMS ERROR: invalid memory index|"},
        {"AT+CMGD=21", "|+CMS ERROR: invalid memory index|"},
        {"AT+CMGF=1", "|+CMS ERROR: operation not supported|"},
        {"AT+CSCA=\"10086\"", "|OK|"},
        {"AT+CSCA?", "|+CSCA: \"10086\",129||OK|"},
        {"AT+CSCA=\"12a\"", "|+CMS ERROR: invalid PDU mode parameter|"},
        {"AT+CSCA=\"+\"", "|+CMS ERROR: invalid PDU mode parameter|"},
    });
}

TEST_F(Messages, ComeFromTheConsoleOneAfterTheOther) {
    Ask("AT+CNMI=2,1");
    Do({"sms +8613800138000 \"say \\\"hi\\\"\"", "sms ucs2 Varkel two words", "sms-raw 0801"});
    Converse({
        {"", "|+CMTI: \"SM\",1|", 0},
        {"", "|+CMTI: \"SM\",2|", 79},
        {"", "|+CMTI: \"SM\",3|", 1},
        {"AT+CMGR=3", "|+CMGR: 0,,0|0801||OK|"},  // whatever it is
    });
    EXPECT_EQ(Command("messages"),
              "3 of 20 slots, 0 waiting in the network\n"
              "1  unread  +8613800138000  2024-01-01 08:00:12 +08:00  \"say \"hi\"\"\n"
              "2  unread  Varkel  2024-01-01 08:00:12 +08:00  \"two words\"\n"
              "3  read  no message: 0801");
}

TEST_F(Messages, WaitInTheNetworkUntilTheSimCanTakeThem) {
    Ask("AT+CNMI=2,1");
    Do({"sms-burst 22 +4912345"});
    Pass(1000);
    EXPECT_THAT(said, testing::Contains("message from +4912345 waits: the SIM is full"));
    EXPECT_EQ(Waiting(), 2u);
    unit.HostWrites("AT+CMGD=7\r", now);
    EXPECT_THAT(Pieces(500), testing::ElementsAre("\r\nOK\r\n", "\r\n+CMTI: \"SM\",7\r\n"))
        << "the announcement is no part of the answer";
    EXPECT_EQ(DecodeDeliver(unit.Sim().messages.Find(7)->pdu)->text, "Message 21 of 22");
    EXPECT_EQ(Ask("AT+CMGD=1,4"), "|OK||+CMTI: \"SM\",1|");
    EXPECT_EQ(Waiting(), 0u);
    Do({"sms-burst 400"});
    Pass(1000);
    EXPECT_EQ(Waiting(), 381u);
    EXPECT_FALSE(unit.Command("sms-burst 20", now).well) << "more than it keeps";
    EXPECT_EQ(Waiting(), 381u) << "all or none";
}

TEST_F(Messages, WaitInTheNetworkForTheModule) {
    Do({"module off", "sms 10086 early"});
    EXPECT_THAT(said, testing::Contains("message from 10086 waits: the module is out of reach"));
    Start();
    EXPECT_THAT(said, testing::Contains("message from 10086 in slot 1, not announced"));
    Converse({
        {"AT+CNMI=2,1", "|OK|"},
        {"!network off", ""},
        {"!sms 10086 later", "", 5000},
        {"!network on", "", 2039},  // the search takes 2 s
        {"", "|+CMTI: \"SM\",2|", 1},
    });
}

TEST_F(Messages, ThatWereSentAreToldTheNewestOnes) {
    EXPECT_EQ(Command("sent"), "nothing was sent");
    EXPECT_EQ(Ask("AT+CMGS=23"), "|> ");
    EXPECT_EQ(Write("0011000D91683108108300F0000800084F60597D00410042\x1A", 10'000), "|+CMGS: 1||OK|");
    EXPECT_THAT(networkSaid, testing::ElementsAre("message to 8613800138000: \"你好AB\""));
    EXPECT_EQ(Command("sent"), "8613800138000  \"你好AB\"");
    for (int i = 0; i < 100; ++i)
        unit.Messages().OnSent(*BytesFromHex("000100038101F800040141"), now);
    EXPECT_EQ(unit.Messages().Sent().size(), 100u);
    EXPECT_EQ(unit.Messages().Sent().front().text, "A") << "the first is forgotten";
}

}  // namespace
}  // namespace varkel::sim
