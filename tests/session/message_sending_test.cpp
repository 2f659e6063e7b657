// Sending a message, and everything that can come instead of its result.
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

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

struct Sending : testing::Test, OpenBench {
    bool Send(std::string_view text, Ticks time = 0) {
        const bool taken = dialog->Messages().SendSMDll("13800000000", text);
        if (time > 0) RunFor(time);
        return taken;
    }
    int Tips(int state) { return screens.Count("tip " + std::to_string(state)); }
};

TEST_F(Sending, IsRecordedAtOnceAndTellsHowItFares) {
    ASSERT_TRUE(Send("Grüße, 你好"));
    ASSERT_EQ(Outbox().size(), 1u);
    EXPECT_EQ(Outbox()[0].szPhoneNo.View(), "8613800000000");
    EXPECT_EQ(Outbox()[0].Index, SmsState::Opened);
    RunFor(5000);
    EXPECT_THAT(unit.Command("sent"), HasSubstr("8613800000000  \"Grüße, 你好\""));
    unit.TakeTrace();
    Happen("prompt", 21'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 2) << "a prompt that nobody awaits does nothing";
    EXPECT_THAT(StartingWith({"tip "}, screens.Shown()), ElementsAre("tip 1", "tip 2", "tip 0"));
}

TEST_F(Sending, IsNeverInterleavedWithThePoll) {
    Happen("sms-late 25s");
    ASSERT_TRUE(Send("hello", 3000));
    EXPECT_THAT(unit.TakeTrace(), Contains(HasSubstr("AT+CMGS=")));
    RunFor(20'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 0);
    RunFor(7000);
    EXPECT_EQ(Tips(2), 1);
    unit.TakeTrace();
    RunFor(30'000);
    EXPECT_GE(unit.Count("AT+CSQ"), 2) << "the poll goes on";
}

TEST_F(Sending, FailsWhereTheModemFails) {
    const std::pair<const char*, Ticks> rows[] = {{"sms-fail 1", 5000},
                                                  {"sms-no-prompt 1", 15'000},
                                                  {"sms-no-result 1", 65'000},
                                                  {"network off", 8000}};
    for (const auto& [fault, time] : rows) {
        const int failed = Tips(3);
        Happen(fault);
        ASSERT_TRUE(Send("hello", time));
        EXPECT_EQ(Tips(3), failed + 1) << fault;
        unit.TakeTrace();
        RunFor(15'000);
        EXPECT_GE(unit.Count("AT+CSQ"), 1) << "the poll goes on after " << fault;
    }
    Happen("network on", 15'000);
    ASSERT_TRUE(Send("at last", 5000));
    EXPECT_EQ(Tips(2), 1);
    EXPECT_EQ(Outbox().size(), 5u) << "also those that failed";
}

TEST_F(Sending, EndsWithTheLink) {
    Happen("sms-no-result 1");
    ASSERT_TRUE(Send("hello", 3000));
    dialog->CloseModule();
    RunFor(3000);
    EXPECT_EQ(Tips(3), 1);
    ASSERT_TRUE(Send("while closed", 3000));
    EXPECT_EQ(Tips(3), 2);
}

TEST_F(Sending, RefusesWhatCannotGoOut) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "warn 5"}, {"12345678901234567", "warn 25"}, {"12\x1A\rAT+CFUN=0", "warn 26"}};
    for (const auto& [number, warning] : rows) {
        EXPECT_FALSE(dialog->Messages().SendSMDll(number, "text"));
        RunFor(1000);
        EXPECT_EQ(screens.Count(warning), 1) << warning;
    }
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(Outbox(), IsEmpty());
}

// What one PDU has no room for is not sent, but what was written is not lost.
TEST_F(Sending, CutsLongTextsAtACharacter) {
    EXPECT_FALSE(Send(std::string(300, 'x')));
    EXPECT_EQ(screens.Count("warn 32"), 1);
    std::string characters;
    for (int i = 0; i < 100; ++i)
        characters += "字";
    EXPECT_TRUE(Send(characters, 5000));
    const auto outbox = Outbox();
    ASSERT_EQ(outbox.size(), 2u);
    EXPECT_EQ(outbox[0].szContent.View(), std::string(121, 'x'));
    EXPECT_EQ(outbox[1].szContent.View().size(), 120u) << "two bytes each";
    EXPECT_EQ(Tips(2), 1);
}

TEST_F(Sending, SendsOneMessageAfterTheOther) {
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(Send("message " + std::to_string(i)));
    RunFor(30'000);
    EXPECT_EQ(Tips(2), 5);
    const std::string sent = unit.Command("sent");
    for (int i = 0; i < 5; ++i)
        EXPECT_THAT(sent, HasSubstr("message " + std::to_string(i)));
    int taken = 0;
    Happen("sms-no-result 1");
    while (Send("too many") && taken < 100)
        ++taken;
    EXPECT_LE(taken, static_cast<int>(MessageSending::mostWaiting) + 1);
    EXPECT_EQ(screens.Count("warn 12"), 1);
}

TEST_F(Sending, EchoesTheServiceCentre) {
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"+CSCA: \"+8613800100500\",145", {"AT+CSCA=\"+8613800100500\""}},
        {"+CSCA: \"12345", {"AT+CSCA=\"12345\""}},
        {"+CSCA:", {}},
        {"+CSCA: \"\",129", {}},
        {"+CSCA: \"123456789012345678901234567890\"", {}},
        {"+CSCA: \"1;+CFUN=0\"", {}},
    };
    for (const auto& [answer, commands] : rows) {
        Happen("urc " + answer, 500);
        EXPECT_EQ(Commands(), commands) << answer;
    }
}

}  // namespace
}  // namespace varkel::test
