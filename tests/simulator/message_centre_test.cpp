#include "simulator/message_centre.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;
using test::WithBars;

constexpr std::string_view toAb = "0011000D91683108108300F0000800084F60597D00410042";

class MessageCentreTest : public testing::Test {
  protected:
    void Start() {
        bench.Start();
        bench.Ask("AT+CNMI=2,1");
    }
    // Gives AT+CMGS the message and says what came until that time had passed.
    std::string Send(std::string_view hex, Millis time) {
        const std::string prompt = bench.Ask("AT+CMGS=" + std::to_string(hex.size() / 2 - 1));
        if (prompt != "|> ") return prompt;
        bench.unit.HostWrites(std::string(hex) + "\x1A", bench.now);
        return bench.Pass(time);
    }
    bool Said(std::string_view text) const {
        return std::find(bench.said.begin(), bench.said.end(), text) != bench.said.end();
    }
    std::string Command(std::string_view line) { return bench.unit.Command(line, bench.now).text; }

    BenchUnit bench;
};

TEST_F(MessageCentreTest, DeliversWhatTheConsoleWrites) {
    Start();
    bench.Do({"sms +8613800138000 \"say \\\"hi\\\"\"", "sms ucs2 Varkel two words", "sms 10086 你好"});
    EXPECT_EQ(bench.Pass(0), "|+CMTI: \"SM\",1|");
    EXPECT_EQ(bench.Pass(79), "|+CMTI: \"SM\",2|");
    EXPECT_EQ(bench.Pass(1), "|+CMTI: \"SM\",3|");
    EXPECT_TRUE(Said("message from Varkel in slot 2"));
    EXPECT_EQ(Command("messages"),
              "3 of 20 slots, 0 waiting in the network\n"
              "1  unread  +8613800138000  2024-01-01 08:00:12 +08:00  \"say \"hi\"\"\n"
              "2  unread  Varkel  2024-01-01 08:00:12 +08:00  \"two words\"\n"
              "3  unread  10086  2024-01-01 08:00:12 +08:00  \"你好\"");
    bench.Do({"sms-clear", "sms-raw 0801"});
    EXPECT_EQ(bench.Pass(100), "|+CMTI: \"SM\",1|");
    EXPECT_EQ(bench.Ask("AT+CMGR=1"), "|+CMGR: 0,,0|0801||OK|") << "whatever it is";
    EXPECT_NE(Command("messages").find("1  read  no message: 0801"), std::string::npos);
}

TEST_F(MessageCentreTest, KeepsWhatTheSimCannotTake) {
    Start();
    bench.Do({"sms-burst 22 +4912345"});
    bench.Pass(1000);
    EXPECT_TRUE(Said("message from +4912345 waits: the SIM is full"));
    EXPECT_EQ(bench.unit.Messages().Waiting(), 2u);
    bench.unit.HostWrites("AT+CMGD=7\r", bench.now);
    const auto pieces = bench.Pieces(500);
    ASSERT_EQ(pieces.size(), 2u) << "the announcement is no part of the answer";
    EXPECT_EQ(WithBars(pieces[0]), "|OK|");
    EXPECT_EQ(WithBars(pieces[1]), "|+CMTI: \"SM\",7|");
    EXPECT_EQ(DecodeDeliver(bench.unit.Sim().messages.Find(7)->pdu)->text, "Message 21 of 22");
    EXPECT_EQ(bench.Ask("AT+CMGD=1,4"), "|OK||+CMTI: \"SM\",1|");
    EXPECT_EQ(bench.unit.Messages().Waiting(), 0u);
    bench.Do({"sms-burst 400"});
    bench.Pass(1000);
    EXPECT_EQ(bench.unit.Messages().Waiting(), 381u);
    EXPECT_FALSE(bench.unit.Command("sms-burst 20", bench.now).well) << "more than it keeps";
    EXPECT_EQ(bench.unit.Messages().Waiting(), 381u) << "all or none";
}

TEST_F(MessageCentreTest, WaitsForTheModule) {
    bench.Do({"sms 10086 early"});
    EXPECT_TRUE(Said("message from 10086 waits: the module is out of reach"));
    Start();
    EXPECT_TRUE(Said("message from 10086 in slot 1, not announced")) << "nobody had asked for reports";
    bench.Do({"network off", "sms 10086 later"});
    EXPECT_EQ(bench.Pass(5000), "");
    bench.Do({"network on"});
    EXPECT_EQ(bench.Pass(2039), "") << "the search takes 2 s";
    EXPECT_EQ(bench.Pass(1), "|+CMTI: \"SM\",2|");
    bench.Do({"sim out", "sms 10086 \"no card\""});
    bench.Pass(5000);
    bench.Do({"sim in"});
    EXPECT_NE(bench.Pass(10'000).find("|+CMTI: \"SM\",3|"), std::string::npos);
}

TEST_F(MessageCentreTest, TellsWhatTheModuleSends) {
    Start();
    EXPECT_EQ(Command("sent"), "nothing was sent");
    EXPECT_EQ(Send(toAb, 1500), "|+CMGS: 1||OK|");
    EXPECT_EQ(bench.networkSaid, std::vector<std::string>{"message to 8613800138000: \"你好AB\""});
    ASSERT_EQ(bench.messages.size(), 1u);
    EXPECT_EQ(bench.messages[0].number, "8613800138000");
    EXPECT_EQ(bench.messages[0].text, "你好AB");
    EXPECT_EQ(Command("sent"), "8613800138000  \"你好AB\"");
    for (int i = 0; i < 100; ++i)
        bench.unit.Messages().OnSent(*BytesFromHex("000100038101F800040141"), bench.now);
    EXPECT_EQ(bench.unit.Messages().Sent().size(), 100u);
    EXPECT_EQ(bench.unit.Messages().Sent().front().text, "A") << "the first is forgotten";
}

TEST_F(MessageCentreTest, AnswersForTheOperator) {
    Start();
    bench.Do({"ussd Баланс: 42"});
    // To 8610086.
    EXPECT_EQ(Send("0011000791680180F6000800020041", 1500), "|+CMGS: 1||OK|");
    EXPECT_EQ(bench.Pass(2999), "");
    EXPECT_EQ(bench.Pass(1), "|+CMTI: \"SM\",1|");
    const auto answer = DecodeDeliver(bench.unit.Sim().messages.Find(1)->pdu);
    EXPECT_EQ(answer->from.Text(), "10086");
    EXPECT_EQ(answer->text, "Баланс: 42");
}

TEST_F(MessageCentreTest, RefusesWhatItCannotSend) {
    constexpr std::string_view lines =
        "sms|sms 10086|sms 7bit 10086|sms 7bit 10086 Я|sms \"a long name for one\" x|sms 10086 \"open|"
        "sms 10086 \"one\" two|sms-raw|sms-raw 0|sms-raw xy|sms-burst|sms-burst 0|sms-burst 401|"
        "sms-burst 3 \"|messages all|sms-clear 1|sent x|sms-fail|sms-fail -1|sms-fail 9999|sms-late soon|"
        "prompt x";
    for (const std::string& line : test::Lines(lines)) {
        const CommandResult result = bench.unit.Command(line, bench.now);
        EXPECT_FALSE(result.well) << line;
        EXPECT_FALSE(result.text.empty()) << line;
    }
    EXPECT_FALSE(bench.unit.Command("sms 10086 " + std::string(1531, 'x'), bench.now).well);
    EXPECT_FALSE(bench.unit.Command("sms-raw " + std::string(512, '0'), bench.now).well);
    EXPECT_EQ(bench.unit.Messages().Waiting(), 0u);
}

}  // namespace
}  // namespace varkel::sim
