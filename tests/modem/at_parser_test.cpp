#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "tests/modem/channel_bench.h"
#include "tests/modem/reference_parser.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;

struct ParserTest : testing::Test {
    ParserTest() { bench.channel.Attach(bench.link, &bench); }

    std::vector<std::string> Receive(const std::vector<std::string_view>& chunks) {
        for (const std::string_view chunk : chunks)
            bench.channel.ProcessRcv(chunk);
        return bench.TakeEvents();
    }

    ChannelBench bench;
};

TEST_F(ParserTest, RaisesEventsInTableOrderEachOnce) {
    const struct {
        std::vector<std::string_view> chunks;
        std::vector<std::string> events;
    } cases[] = {
        {{"\r\n+CSQ: 18,99\r\n\r\nOK\r\n"}, {"OnSignalStatus(+CSQ: 18,99\r\n\r\nOK\r\n)", "OnAtResult(1)"}},
        {{"\r\nRING\r\n\r\n+CLIP: \"123\",129\r\n"},
         {"OnRingNo(+CLIP: \"123\",129\r\n)", "OnRing(RING\r\n\r\n+CLIP: \"123\",129\r\n)"}},
        {{"+CMTI: \"SM\",1\r\n+CMTI: \"SM\",2\r\n"}, {"OnMsComeIn(+CMTI: \"SM\",1\r\n+CMTI: \"SM\",2\r\n)"}},
        {{"", "nothing of interest\r\n"}, {}},
        // Keywords that overlap.
        {{"RING_BACK\r\n", "RING\r\n"}, {"OnRing(RING\r\n)"}},
        {{"CONNECT 1200\r\n"}, {"OnAtResult(3)"}},
        {{"+CME ERROR: SIM busy\r\n"}, {"OnAtResult(1)"}},
        {{"no sim\r\n"}, {"OnNoSim()"}},
        // The words that end a call.
        {{"CANNOT CONNECT"}, {"OnCallHooked()", "OnAtResult(3)"}},
        {{"NO CARRIER", "BUSY"}, {"OnCallHooked()", "OnCallHooked()"}},
        {{"NO ANSWER", "NORMAL END", "INVALID NUM"}, {"OnCallHooked()", "OnCallHooked()", "OnCallHooked()"}},
        // Whatever comes next completes an identity, and raises no event of its own.
        {{"AT+CIMI\r\r\n", "460001234567890\r\n\r\nOK\r\n"},
         {"OnCimi(+CIMI\r\r\n460001234567890\r\n\r\nOK\r\n)"}},
        {{"AT+CIMI\r\r\n460001234567890\r\n\r\nOK\r\n"},
         {"OnCimi(+CIMI\r\r\n460001234567890\r\n\r\nOK\r\n)", "OnAtResult(1)"}},
        {{"AT+GSN\r\r\n", "RING\r\n", "RING\r\n"}, {"OnGsn(+GSN\r\r\nRING\r\n)", "OnRing(RING\r\n)"}},
        // An answer of the network is complete by its delimiters: both, or neither.
        {{"+CUSD: 0,\"Hello\",15\r\n"}, {"OnUssd(+CUSD: 0,\"Hello\",15\r\n)"}},
        {{"+CUSD: 2\r\n"}, {"OnUssd(+CUSD: 2\r\n)"}},
        {{"+CUSD: 0,\"Hel", "lo\",15\r\n"}, {"OnUssd(+CUSD: 0,\"Hello\",15\r\n)"}},
    };
    for (const auto& example : cases)
        EXPECT_EQ(Receive(example.chunks), example.events) << example.chunks[0];
    EXPECT_TRUE(bench.channel.UssdSession());
    EXPECT_TRUE(bench.channel.TakeSimBusy());
    EXPECT_FALSE(bench.channel.TakeSimBusy());
    Receive({"UNDER-VOLTAGE WARNNING\r\n"});
    EXPECT_TRUE(bench.channel.TakeUnderVoltage());
}

TEST_F(ParserTest, AccumulatesWithinItsBuffer) {
    const std::string half(3000, '1');
    EXPECT_EQ(Receive({"+CIMI" + half, half})[0].size(), 2048 + std::string("OnCimi()").size());
}

TEST_F(ParserTest, ConsumesOneShotsWithTheFirstFinalResult) {
    CATChannel& at = bench.channel;
    at.dialPending.Set(0);
    EXPECT_THAT(Receive({"OK\r\n", "OK\r\n"}),
                ElementsAre("OnAtResult(1)", "OnCallEstablished()", "OnAtResult(1)"));
    at.dialPending.Set(0);
    EXPECT_THAT(Receive({"ERROR\r\n"}), ElementsAre("OnAtResult(1)", "OnCallHooked()"));
    at.dialPending.Set(0);
    EXPECT_THAT(Receive({"NO DIALTONE\r\n", "OK\r\n"}), ElementsAre("OnAtResult(11)", "OnAtResult(1)"));
    at.hangUpPending.Set(0);
    EXPECT_THAT(Receive({"ERROR\r\n", "OK\r\n"}),
                ElementsAre("OnAtResult(1)", "OnAtResult(1)", "OnCallHooked()"));
    at.ussdPending.Set(0);
    EXPECT_THAT(Receive({"OK\r\n", "ERROR\r\n"}),
                ElementsAre("OnAtResult(1)", "OnAtResult(1)", "OnAtResult(0)"));
    EXPECT_FALSE(at.OneShotPending());
}

TEST_F(ParserTest, ReportsASendToTheTipWindowOrToTheClient) {
    EXPECT_THAT(Receive({"\r\n> ", "OK\r\n"}),
                ElementsAre("OnSendState(1)", "OnSendMsSuc()", "OnAtResult(1)"))
        << "without a tip window nobody is told";
    bench.windows.CreateWindow("MsgTipDlg", {});
    EXPECT_THAT(Receive({"\r\n> ", "OK\r\n"}), ElementsAre("OnSendState(1)", "OnSendMsSuc()", "OnAtResult(1)",
                                                           "OnSendState(2)", "OnSendTip()"));
    EXPECT_THAT(
        Receive({"\r\n> ", "ERROR\r\n"}),
        ElementsAre("OnSendState(1)", "OnSendMsSuc()", "OnAtResult(1)", "OnSendState(3)", "OnSendTip()"));
    bench.servesClient = true;
    EXPECT_THAT(Receive({"\r\n> ", "OK\r\n"}), ElementsAre("OnSendMsSuc()", "OnAtResult(1)"));
    EXPECT_EQ(bench.sendResult->Wait(0), WaitResult::Object0);
    Receive({"\r\n> ", "ERROR\r\n"});
    EXPECT_EQ(bench.sendResult->Wait(0), WaitResult::Timeout);
}

TEST_F(ParserTest, MarksAnUnansweredPinQuery) {
    bench.channel.cmd_at_cpin();
    Receive({"OK\r\n"});
    EXPECT_FALSE(bench.channel.TakeCpinRefused());
    Receive({"ERROR\r\n"});
    EXPECT_TRUE(bench.channel.TakeCpinRefused());
    bench.channel.cmd_at_cpin();
    Receive({"+CPIN: READY\r\n", "ERROR\r\n"});
    EXPECT_FALSE(bench.channel.TakeCpinRefused());
}

TEST_F(ParserTest, SeesAndLogsWhatFollowsANul) {
    EXPECT_THAT(Receive({std::string_view("\0\0RING\0\r\nOK\r\n", 13)}),
                ElementsAre("OnRing(" + std::string("RING\0\r\nOK\r\n", 11) + ")", "OnAtResult(1)"));
    EXPECT_NE(bench.LogContent().find("..RING.\r\nOK"), std::string::npos);
}

// What the modem says, as it was recorded; each is sent whole to the reference and in pieces to both.
const char* const dialogues[] = {
    "AT+CSQ\r\r\n+CSQ: 18,99\r\n\r\nOK\r\n",
    "AT+CIMI\r\r\n460001234567890\r\n\r\nOK\r\n",
    "AT+GSN\r\r\n356938035643809\r\n\r\nOK\r\n\r\nRING\r\n",
    "\r\n+CUSD: 1,\"1. Balance\r\n2. Tariff\",15\r\n\r\nRING_BACK\r\n",
    "AT+CMGS=19\r\r\n> \r\n+CMGS: 4\r\n\r\nOK\r\n",
    "\r\n+CME ERROR: SIM busy\r\n\r\n+URCIND:3\r\n\r\n+CPIN: SIM PIN\r\n",
    "\r\nRING\r\n\r\n+CLIP: \"+8613800138000\",145\r\n\r\nNO CARRIER\r\n",
    "ATD10086;\r\r\nNO DIALTONE\r\n\r\nCONNECT 1200\r\nERROR",
};

struct ParserModel : testing::Test {
    ParserModel() {
        bench.log.Open("quiet", 0, LogLevel::None);
        bench.channel.Attach(bench.link, &bench);
    }
    // The same events from both.
    void Receive(std::initializer_list<std::string_view> chunks) {
        for (const std::string_view chunk : chunks) {
            bench.channel.ProcessRcv(chunk);
            reference.ProcessRcv(chunk);
        }
        ASSERT_EQ(bench.TakeEvents(), std::exchange(reference.events, {})) << testing::PrintToString(chunks);
    }

    ChannelBench bench;
    ReferenceParser reference;
};

TEST_F(ParserModel, AgreesWithTheRulesHoweverTheDialogueIsCut) {
    for (const std::string_view dialogue : dialogues) {
        const std::size_t size = dialogue.size();
        for (std::size_t first = 0; first <= size; ++first) {
            for (std::size_t second = first; second <= size && !HasFailure(); ++second) {
                Receive({dialogue.substr(0, first), dialogue.substr(first, second - first),
                         dialogue.substr(second), "\r\n"});
            }
        }
    }
}

TEST_F(ParserModel, AgreesWithTheRulesForEveryPairOfKeywords) {
    for (const std::string_view first : keywordTable) {
        for (const std::string_view second : keywordTable) {
            for (const char* between : {"", "\r\n", ",\"", "\",\r\nOK"})
                Receive({std::string(first) + between + std::string(second), "\r\n"});
            if (HasFailure()) return;
        }
    }
}

TEST_F(ParserModel, AgreesWithTheRulesUnderNoise) {
    std::mt19937 random(7);
    for (const unsigned oneIn : {10'000u, 1000u, 100u, 10u}) {
        for (int round = 0; round < 2000 && !HasFailure(); ++round) {
            std::string chunk;
            for (unsigned lines = random() % 4; lines > 0; --lines)
                chunk += dialogues[random() % std::size(dialogues)];
            for (char& c : chunk) {
                if (random() % oneIn == 0) c = static_cast<char>(random());
            }
            chunk.resize(std::min<std::size_t>(chunk.size(), 1024));
            Receive({chunk});
        }
    }
}

}  // namespace
}  // namespace varkel::test
