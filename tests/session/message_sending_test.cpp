// Sending a message, and everything that can come instead of its result.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(Destination, IsInternationalWithoutAPlus) {
    struct Row {
        const char* number;
        const char* country;
        const char* destination;
        ValueFault fault = ValueFault::None;
    };
    const Row rows[] = {
        {"13800000000", "86", "8613800000000"},
        {"8613800000000", "86", "8613800000000"},
        {"+4915112345678", "86", "4915112345678"},
        {"+8613800000000", "86", "8613800000000"},
        {"138-0000 0000", "86", "8613800000000"},
        {"13800000000", "", "13800000000"},
        {"123456789012345", "86", "", ValueFault::TooLong},
        {"+123456789012345", "86", "123456789012345"},
        {"+", "86", "", ValueFault::Invalid},
        {" - ", "86", "", ValueFault::Invalid},
        {"12\x1A\rAT+CFUN=0\r", "86", "", ValueFault::Invalid},
        {"1380000000a", "86", "", ValueFault::Invalid},
        {"86+1", "86", "", ValueFault::Invalid},
    };
    for (const Row& row : rows) {
        FixedText<16> destination;
        EXPECT_EQ(MakeDestination(row.number, row.country, destination), row.fault) << row.number;
        EXPECT_EQ(destination.View(), row.destination) << row.number;
    }
}

struct Sending : testing::Test {
    bool Send(std::string_view text = "hello") {
        return bench.dialog->Messages().SendSMDll("13800000000", text);
    }
    int Tips(int state) { return bench.screens.Count("tip " + std::to_string(state)); }

    OpenBench bench;
};

TEST_F(Sending, IsRecordedAtOnceAndTellsHowItFares) {
    ASSERT_TRUE(Send("Grüße, 你好"));
    ASSERT_EQ(bench.Outbox().size(), 1u);
    EXPECT_EQ(bench.Outbox()[0].szPhoneNo.View(), "8613800000000");
    EXPECT_EQ(bench.Outbox()[0].Index, SmsState::Opened);
    bench.RunFor(5000);
    EXPECT_THAT(bench.unit.Command("sent"), HasSubstr("8613800000000  \"Grüße, 你好\""));
    EXPECT_EQ(Tips(1), 1);
    EXPECT_EQ(Tips(2), 1);
    EXPECT_EQ(Tips(0), 1) << "and is gone";
    EXPECT_EQ(Tips(3), 0);
}

TEST_F(Sending, IsNeverInterleavedWithThePoll) {
    bench.unit.Command("sms-late 25s");
    ASSERT_TRUE(Send());
    bench.RunFor(20'000);
    const auto trace = bench.unit.TakeTrace();
    const auto sent = std::find_if(trace.begin(), trace.end(),
                                   [](const std::string& line) { return line.starts_with("AT+CMGS="); });
    ASSERT_NE(sent, trace.end());
    EXPECT_EQ(std::count(sent, trace.end(), "AT+CSQ"), 0);
    bench.RunFor(10'000);
    EXPECT_EQ(Tips(2), 1);
    bench.unit.TakeTrace();
    bench.RunFor(30'000);
    EXPECT_GE(bench.unit.Count("AT+CSQ"), 2) << "the poll goes on";
}

TEST_F(Sending, FailsWhereTheModemFails) {
    struct Row {
        const char* fault;
        Ticks time;
    };
    for (const Row& row : {Row{"sms-fail 1", 5000}, Row{"sms-no-prompt 1", 15'000},
                           Row{"sms-no-result 1", 65'000}, Row{"network off", 8000}}) {
        const int failed = Tips(3);
        bench.unit.Command(row.fault);
        ASSERT_TRUE(Send());
        bench.RunFor(row.time);
        EXPECT_EQ(Tips(3), failed + 1) << row.fault;
        bench.unit.TakeTrace();
        bench.RunFor(15'000);
        EXPECT_GE(bench.unit.Count("AT+CSQ"), 1) << "the poll goes on after " << row.fault;
    }
    bench.unit.Command("network on");
    bench.RunFor(15'000);
    ASSERT_TRUE(Send("at last"));
    bench.RunFor(5000);
    EXPECT_EQ(Tips(2), 1);
    EXPECT_EQ(bench.Outbox().size(), 5u) << "also those that failed";
}

TEST_F(Sending, EndsWithTheLink) {
    bench.unit.Command("sms-no-result 1");
    ASSERT_TRUE(Send());
    bench.RunFor(3000);
    bench.dialog->CloseModule();
    bench.RunFor(3000);
    EXPECT_EQ(Tips(3), 1);
    ASSERT_TRUE(Send("while closed"));
    bench.RunFor(3000);
    EXPECT_EQ(Tips(3), 2);
}

TEST_F(Sending, DoesNothingAtAPromptThatNobodyAwaits) {
    ASSERT_TRUE(Send());
    bench.RunFor(5000);
    bench.unit.TakeTrace();
    bench.unit.Command("prompt");
    bench.RunFor(21'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 2);
    EXPECT_EQ(Tips(1), 1);
}

TEST_F(Sending, TellsAProgramByTheEventAlone) {
    const auto event = bench.objects.CreateEvent("SendSM_SUS");
    const auto send = [&] {
        return bench.dialog->Messages().SendSMDll("13800000000", "hello", Sender::Client);
    };
    event->Reset();
    ASSERT_TRUE(send());
    EXPECT_TRUE(bench.dialog->State().m_externalClient);
    bench.RunFor(5000);
    EXPECT_FALSE(bench.dialog->State().m_externalClient) << "it has its result";
    EXPECT_EQ(event->Wait(0), WaitResult::Object0);
    bench.unit.Command("sms-fail 1");
    ASSERT_TRUE(send());
    bench.RunFor(5000);
    EXPECT_EQ(event->Wait(0), WaitResult::Timeout);
    EXPECT_EQ(Tips(1) + Tips(2) + Tips(3), 0);
    bench.unit.TakeTrace();
    bench.RunFor(15'000);
    EXPECT_GE(bench.unit.Count("AT+CSQ"), 1);
}

TEST_F(Sending, RefusesWhatCannotGoOut) {
    MessageHandling& messages = bench.dialog->Messages();
    EXPECT_FALSE(messages.SendSMDll("", "text"));
    EXPECT_FALSE(messages.SendSMDll("12345678901234567", "text"));
    EXPECT_FALSE(messages.SendSMDll("12\x1A\rAT+CFUN=0", "text"));
    bench.RunFor(3000);
    EXPECT_EQ(bench.screens.Count("warn 5"), 1);
    EXPECT_EQ(bench.screens.Count("warn 25"), 1);
    EXPECT_EQ(bench.screens.Count("warn 26"), 1);
    EXPECT_THAT(bench.Commands(), IsEmpty());
    EXPECT_THAT(bench.Outbox(), IsEmpty());
}

// What one PDU has no room for is not sent, but what was written is not lost.
TEST_F(Sending, CutsLongTextsAtACharacter) {
    EXPECT_FALSE(Send(std::string(300, 'x')));
    EXPECT_EQ(bench.screens.Count("warn 32"), 1);
    std::string characters;
    for (int i = 0; i < 100; ++i)
        characters += "字";
    EXPECT_TRUE(Send(characters));
    bench.RunFor(5000);
    const auto outbox = bench.Outbox();
    ASSERT_EQ(outbox.size(), 2u);
    EXPECT_EQ(outbox[0].szContent.View(), std::string(121, 'x'));
    EXPECT_EQ(outbox[1].szContent.View().size(), 120u) << "two bytes each";
    EXPECT_EQ(Tips(2), 1);
}

TEST_F(Sending, SendsOneMessageAfterTheOther) {
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(Send("message " + std::to_string(i)));
    bench.RunFor(30'000);
    EXPECT_EQ(Tips(2), 5);
    const std::string sent = bench.unit.Command("sent");
    for (int i = 0; i < 5; ++i)
        EXPECT_THAT(sent, HasSubstr("message " + std::to_string(i)));
    int taken = 0;
    bench.unit.Command("sms-no-result 1");
    while (Send("too many") && taken < 100)
        ++taken;
    EXPECT_LE(taken, static_cast<int>(MessageSending::mostWaiting) + 1);
    EXPECT_EQ(bench.screens.Count("warn 12"), 1);
}

TEST_F(Sending, EchoesTheServiceCentre) {
    struct Row {
        const char* answer;
        std::vector<std::string> commands;
    };
    const Row rows[] = {
        {"+CSCA: \"+8613800100500\",145", {"AT+CSCA=\"+8613800100500\""}},
        {"+CSCA: \"12345", {"AT+CSCA=\"12345\""}},
        {"+CSCA:", {}},
        {"+CSCA: \"\",129", {}},
        {"+CSCA: \"123456789012345678901234567890\"", {}},
        {"+CSCA: \"1;+CFUN=0\"", {}},
    };
    for (const Row& row : rows) {
        bench.unit.Command(std::string("urc ") + row.answer);
        bench.RunFor(500);
        EXPECT_EQ(bench.Commands(), row.commands) << row.answer;
    }
}

}  // namespace
}  // namespace varkel::test
