#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/modem/channel_bench.h"

namespace varkel::test {
namespace {

template <class Value>
Value Parsed(std::string_view text) {
    Value value;
    EXPECT_EQ(Value::Parse(text, value), ValueFault::None) << text;
    return value;
}

SimSlot Slot(int number) {
    return SimSlot::From(number).value();
}

struct Command {
    std::function<void(CATChannel& at)> send;
    std::string line;
    Ticks takes = 0;
};

const Command commands[] = {
    {&CATChannel::cmd_hangup, "AT+CHUP"},
    {&CATChannel::cmd_answer_call, "ATA"},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("123")); }, "ATD123;"},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("7123")); }, "ATD7123;"},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("*31")); }, "ATD*31;"},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("+86 (138) 00-138.00/0pw1")); }, "ATD+8613800138000pw1;"},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("*100#")); }, "AT+CSCS=\"GSM\"\rAT+CUSD=1,\"*100#\",15",
     500},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("#31#")); }, "AT+CSCS=\"GSM\"\rAT+CUSD=1,\"#31#\",15",
     500},
    {[](auto& at) { at.cmd_dial(Parsed<DialString>("71")); }, "AT+CSCS=\"GSM\"\rAT+CUSD=1,\"71\",15", 500},
    {[](auto& at) { at.cmd_ussd(0, Parsed<UssdString>("*")); }, "AT+CUSD=0,\"*\",15"},
    {[](auto& at) { at.cmd_deletems(Slot(0)); }, "AT+CMGD=0"},
    {[](auto& at) { at.cmd_readms(Slot(999)); }, "AT+CMGR=999"},
    {&CATChannel::cmd_inquire_mscenter, "AT+CSCA?"},
    {[](auto& at) { at.cmd_set_mscenter(Parsed<CenterNumber>("+8613800100500")); },
     "AT+CSCA=\"+8613800100500\""},
    {&CATChannel::cmd_set_sm, "AT+CPMS=\"SM\",\"SM\",\"SM\""},
    {&CATChannel::cmd_set_pdums, "AT+CMGF=0"},
    {&CATChannel::cmd_set_realtimems, "AT+CNMI=2,1"},
    {&CATChannel::cmd_set_sim_mode, "AT+CPBS = \"SM\""},
    {&CATChannel::cmd_get_sim_status, "AT+CPBS?"},
    {[](auto& at) { at.cmd_get_sim_content(Slot(991), Slot(999)); }, "AT+CPBR=991,999"},
    {&CATChannel::cmd_get_sim_test, "AT+CPBW=?"},
    {[](auto& at) { at.cmd_delete_sim_num(Slot(12)); }, "AT+CPBW=12"},
    {[](auto& at) { at.cmd_set_sim_content(Slot(1), Parsed<SimName>("0041"), Parsed<SimNumber>("+123")); },
     "AT+CPBW=1,\"+123\",129,\"0041\""},
    {&CATChannel::cmd_set_cscs_ucs2, "AT+CSCS=\"UCS2\""},
    {&CATChannel::cmd_set_cscs_gsm, "AT+CSCS=\"GSM\""},
    {&CATChannel::cmd_get_cimi, "AT+CIMI"},
    {&CATChannel::cmd_get_gsn, "AT+GSN"},
    {&CATChannel::cmd_check_signal, "AT+CSQ"},
    {&CATChannel::cmd_at_ipr, "AT+IPR=115200"},
    {&CATChannel::cmd_at_OriginalMsg, "AT+URCIND=1"},
    {[](auto& at) { at.cmd_at_NetworkMode(2); }, "AT+MODODR=2", 100},
    {&CATChannel::cmd_at_cpin, "AT+CPIN?"},
    {[](auto& at) { at.cmd_at_clck(Parsed<Facility>("SC"), 0, Parsed<PhCode>("1234")); },
     "AT+CLCK=\"SC\",0,\"1234\""},
    {[](auto& at) { at.cmd_enter_pin(Parsed<PinCode>("1234"), std::nullopt); }, "AT+CPIN=1234"},
    {[](auto& at) { at.cmd_enter_pin(Parsed<PinCode>("12345678"), Parsed<PinCode>("4321")); },
     "AT+CPIN=12345678,4321"},
    {&CATChannel::cmd_set_clip, "AT+CLIP=1"},
    {[](auto& at) { at.cmd_send_dtmf(Parsed<DtmfKey>("#")); }, "AT+VTS=#"},
    {[](auto& at) { at.cmd_set_volume(99); }, "AT+CLVL=5"},
    {&CATChannel::cmd_set_sidetone, "AT+SIDET=0"},
    {[](auto& at) { at.cmd_set_echo(-2147483647 - 1, 2147483647); }, "AT+ECHO=-2147483648,2147483647"},
    {[](auto& at) { at.cmd_set_apn(Parsed<ApnName>("CMNET")); }, "AT+CGDCONT=1,\"IP\",\"CMNET\""},
    {[](auto& at) { at.cmd_enter_quoted_pin(Parsed<PhCode>("0012")); }, "AT+CPIN=\"0012\""},
    {[](auto& at) { at.cmd_enter_quoted_puk(Parsed<PinCode>("12345678"), Parsed<PinCode>("4321")); },
     "AT+CPIN=\"12345678\",\"4321\""},
    {[](auto& at) {
         at.cmd_sendms(Parsed<PduText>("0891214365870921F311000D91896745230189F70008000400410042"));
     },
     "AT+CMGS=19"},
    {[](auto& at) { at.cmd_sendms(Parsed<PduText>("0011")); }, "AT+CMGS=1"},
};

TEST(Commands, GoOutToTheLetterEndedByCarriageReturnAlone) {
    for (const Command& command : commands) {
        ChannelBench bench;
        bench.Open();
        const std::uint64_t start = bench.runtime.Elapsed();
        command.send(bench.channel);
        const std::uint64_t took = bench.runtime.Elapsed() - start;
        EXPECT_GE(took, command.takes) << command.line;
        EXPECT_LE(took, command.takes + 5) << command.line;
        bench.runtime.Sleep(10);
        EXPECT_EQ(bench.serial.Written(), command.line + "\r");
    }
}

TEST(Commands, FitTheirBuffersAtTheirLongest) {
    ChannelBench bench;
    bench.Open();
    bench.channel.cmd_dial(Parsed<DialString>(std::string(DialString::longest, '1')));
    bench.channel.cmd_ussd(-2147483647, Parsed<UssdString>(std::string(UssdString::longest, '*')));
    bench.channel.cmd_set_mscenter(Parsed<CenterNumber>(std::string(CenterNumber::longest, '1')));
    bench.channel.cmd_set_sim_content(Slot(999), Parsed<SimName>(std::string(SimName::longest, 'f')),
                                      Parsed<SimNumber>(std::string(SimNumber::longest, '1')));
    bench.channel.cmd_set_apn(Parsed<ApnName>(std::string(ApnName::longest, 'a')));
    bench.channel.cmd_at_clck(Parsed<Facility>("SC"), -2147483647, Parsed<PhCode>(std::string(16, '9')));
    bench.channel.cmd_sendms(Parsed<PduText>(std::string(PduText::longest, '0')));
    bench.channel.WriteMessage2Port();
    bench.runtime.Sleep(100);
    const std::string written = bench.serial.Written();
    EXPECT_EQ(std::count(written.begin(), written.end(), '\r'), 7);
    EXPECT_TRUE(written.ends_with("00\x1A"));
}

TEST(Commands, KeepTheirOrderAcrossThreads) {
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        ChannelBench bench(seed);
        bench.Open();
        const auto sender = bench.runtime.CreateThread({.name = "sender"}, [&bench] {
            for (int i = 0; i < 20; ++i)
                bench.channel.cmd_readms(Slot(i));
        });
        for (int i = 0; i < 20; ++i)
            bench.channel.cmd_deletems(Slot(i));
        sender->Wait(infiniteTicks);
        bench.runtime.Sleep(100);
        const std::string written = bench.serial.Written();
        for (const char* command : {"AT+CMGR=", "AT+CMGD="}) {
            std::size_t at = 0;
            for (int i = 0; i < 20; ++i) {
                at = written.find(command + std::to_string(i) + "\r", at);
                ASSERT_NE(at, std::string::npos) << command << i << " with seed " << seed;
            }
        }
    }
}

TEST(Commands, AreDroppedWithoutTheUsbLinkAndReportedOnce) {
    ChannelBench bench;
    bench.Open();
    bench.driver.SetAnswer(DrvFunction::GetUsbHostStatus, 0);
    bench.channel.cmd_check_signal();
    bench.channel.cmd_check_signal();
    EXPECT_THAT(bench.TakeEvents(), testing::ElementsAre("OnClosePipe()"));
    bench.channel.SetLinkUp(true);
    bench.channel.cmd_check_signal();
    EXPECT_THAT(bench.TakeEvents(), testing::ElementsAre("OnClosePipe()"));
    bench.runtime.Sleep(10);
    EXPECT_EQ(bench.serial.Written(), "");
    EXPECT_NE(bench.LogContent().find("[SendATCommond]--Commond:com is unload \r\n"), std::string::npos);
}

TEST(Commands, SayWhenTheWriterTakesNoMore) {
    ChannelBench bench;
    bench.Open();
    bench.serial.stuck = true;
    for (std::size_t i = 0; i < Runtime::threadQueueLimit + 2; ++i)
        bench.channel.cmd_check_signal();
    EXPECT_NE(bench.LogContent().find("the writer takes no more"), std::string::npos);
}

TEST(Commands, SendAPreparedMessageOnce) {
    ChannelBench bench;
    bench.Open();
    bench.channel.WriteMessage2Port();
    bench.runtime.Sleep(10);
    EXPECT_EQ(bench.serial.Written(), "") << "a stray prompt sends nothing";
    bench.channel.cmd_sendms(Parsed<PduText>("00AB"));
    bench.channel.WriteMessage2Port();
    bench.channel.WriteMessage2Port();
    bench.runtime.Sleep(10);
    EXPECT_EQ(bench.serial.Written(), "AT+CMGS=1\r00AB\x1A");
}

// Whatever the parameters hold, the modem sees one command: every special byte at every place is either
// refused or harmless.
template <class Value>
void ExpectNoInjection(std::string_view sample) {
    const std::string_view specials("\r\n\x1A\x1B\"\0\x7F\x80;,=", 11);
    for (std::size_t at = 0; at <= sample.size(); ++at) {
        for (const char special : specials) {
            std::string text(sample);
            text.insert(at, 1, special);
            Value value;
            EXPECT_EQ(Value::Parse(text, value), ValueFault::Invalid)
                << static_cast<int>(special) << " at " << at;
            EXPECT_EQ(value.View(), "");
        }
    }
    Value value;
    EXPECT_EQ(Value::Parse(std::string(Value::longest + 1, sample[0]), value), ValueFault::TooLong);
}

TEST(Values, RefuseWhatCouldEndTheLineOrTheQuote) {
    ExpectNoInjection<DialString>("+8613800138000");
    ExpectNoInjection<PinCode>("1234");
    ExpectNoInjection<PhCode>("12345678");
    ExpectNoInjection<CenterNumber>("+8613800100500");
    ExpectNoInjection<SimNumber>("*123#");
    ExpectNoInjection<ApnName>("internet.apn-1");
    ExpectNoInjection<PduText>("0011");
    const std::string_view harmful("\r\n\x1A\x1B\"\0\x7F\x80", 8);
    for (const char c : harmful) {
        UssdString ussd;
        EXPECT_EQ(UssdString::Parse(std::string("*100") + c, ussd), ValueFault::Invalid);
        SimName name;
        EXPECT_EQ(SimName::Parse(std::string("Li") + c, name), ValueFault::Invalid);
    }
    PinCode pin;
    EXPECT_EQ(PinCode::Parse("123", pin), ValueFault::Invalid);
    EXPECT_EQ(PinCode::Parse("123456789", pin), ValueFault::TooLong);
    EXPECT_FALSE(SimSlot::From(-1));
    EXPECT_FALSE(SimSlot::From(1000));
}

TEST(Values, WriteNamesAsUcs2Hex) {
    SimName name;
    EXPECT_EQ(Ucs2HexName("A虫", name), ValueFault::None);
    EXPECT_EQ(name.View(), "0041866b");
    EXPECT_EQ(Ucs2HexName(std::string(48, 'x'), name), ValueFault::None);
    EXPECT_EQ(Ucs2HexName(std::string(49, 'x'), name), ValueFault::TooLong);
}

TEST(Secrets, NeverReachTheLogHoweverTheEchoComes) {
    const Command secrets[] = {
        {[](auto& at) { at.cmd_at_clck(Parsed<Facility>("SC"), 0, Parsed<PhCode>("73519")); }, "CLCK"},
        {[](auto& at) { at.cmd_enter_pin(Parsed<PinCode>("73519"), Parsed<PinCode>("73519")); }, "CPIN"},
        {[](auto& at) { at.cmd_dial(Parsed<DialString>("**04*73519*73519*73519#")); }, "change"},
    };
    for (const Command& secret : secrets) {
        for (std::size_t piece = 1; piece <= 64; ++piece) {
            ChannelBench bench;
            bench.Open();
            bench.channel.cmd_at_cpin();
            secret.send(bench.channel);
            bench.runtime.Sleep(10);
            // The answer to the query comes first, then the echo, then the result.
            std::string answer =
                "AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n" + bench.serial.Written() + "\r\nOK\r\n";
            for (std::size_t at = 0; at < answer.size(); at += piece) {
                bench.serial.Feed(answer.substr(at, piece));
                bench.runtime.Sleep(150);
            }
            const std::string log = bench.LogContent();
            for (const char* part : {"7351", "3519", "735", "519"}) {
                ASSERT_EQ(log.find(part), std::string::npos) << secret.line << " in pieces of " << piece;
            }
            bench.serial.Feed("\r\n+CSQ: 18,99\r\n");
            bench.runtime.Sleep(150);
            ASSERT_NE(bench.LogContent().find("+CSQ: 18,99"), std::string::npos)
                << secret.line << ": digits come back after the result";
        }
    }
}

TEST(Secrets, AreMaskedForAWhileWithoutAnEcho) {
    ChannelBench bench;
    bench.Open();
    bench.channel.cmd_enter_pin(Parsed<PinCode>("7351"), std::nullopt);
    bench.serial.Feed("\r\nOK\r\n");
    bench.runtime.Sleep(SecretWatch::patience);
    bench.serial.Feed("\r\n+CSQ: 18,99\r\n\r\nOK\r\n");
    bench.runtime.Sleep(200);
    bench.serial.Feed("\r\n+CSQ: 17,99\r\n\r\nOK\r\n");
    bench.runtime.Sleep(200);
    EXPECT_EQ(bench.LogContent().find("18,99"), std::string::npos);
    EXPECT_NE(bench.LogContent().find("17,99"), std::string::npos);
}

}  // namespace
}  // namespace varkel::test
