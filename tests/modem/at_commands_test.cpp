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
    const char* name;
    void (*send)(CATChannel& at);
    std::string line;
    Ticks takes = 0;
};

const Command commands[] = {
    {"hangup", [](CATChannel& at) { at.cmd_hangup(); }, "AT+CHUP"},
    {"answer", [](CATChannel& at) { at.cmd_answer_call(); }, "ATA"},
    {"dial", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("123")); }, "ATD123;"},
    {"dial a 7 number", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("7123")); }, "ATD7123;"},
    {"dial *31", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("*31")); }, "ATD*31;"},
    {"dial with separators",
     [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("+86 (138) 00-138.00/0pw1")); },
     "ATD+8613800138000pw1;"},
    {"service code", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("*100#")); },
     "AT+CSCS=\"GSM\"\rAT+CUSD=1,\"*100#\",15", 500},
    {"service code #", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("#31#")); },
     "AT+CSCS=\"GSM\"\rAT+CUSD=1,\"#31#\",15", 500},
    {"two characters from 7", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("71")); },
     "AT+CSCS=\"GSM\"\rAT+CUSD=1,\"71\",15", 500},
    {"ussd", [](CATChannel& at) { at.cmd_ussd(0, Parsed<UssdString>("*")); }, "AT+CUSD=0,\"*\",15"},
    {"deletems", [](CATChannel& at) { at.cmd_deletems(Slot(0)); }, "AT+CMGD=0"},
    {"readms", [](CATChannel& at) { at.cmd_readms(Slot(999)); }, "AT+CMGR=999"},
    {"inquire_mscenter", [](CATChannel& at) { at.cmd_inquire_mscenter(); }, "AT+CSCA?"},
    {"set_mscenter", [](CATChannel& at) { at.cmd_set_mscenter(Parsed<CenterNumber>("+8613800100500")); },
     "AT+CSCA=\"+8613800100500\""},
    {"set_sm", [](CATChannel& at) { at.cmd_set_sm(); }, "AT+CPMS=\"SM\",\"SM\",\"SM\""},
    {"set_pdums", [](CATChannel& at) { at.cmd_set_pdums(); }, "AT+CMGF=0"},
    {"set_realtimems", [](CATChannel& at) { at.cmd_set_realtimems(); }, "AT+CNMI=2,1"},
    {"set_sim_mode", [](CATChannel& at) { at.cmd_set_sim_mode(); }, "AT+CPBS = \"SM\""},
    {"get_sim_status", [](CATChannel& at) { at.cmd_get_sim_status(); }, "AT+CPBS?"},
    {"get_sim_content", [](CATChannel& at) { at.cmd_get_sim_content(Slot(991), Slot(999)); },
     "AT+CPBR=991,999"},
    {"get_sim_test", [](CATChannel& at) { at.cmd_get_sim_test(); }, "AT+CPBW=?"},
    {"delete_sim_num", [](CATChannel& at) { at.cmd_delete_sim_num(Slot(12)); }, "AT+CPBW=12"},
    {"set_sim_content",
     [](CATChannel& at) {
         at.cmd_set_sim_content(Slot(1), Parsed<SimName>("0041"), Parsed<SimNumber>("+123"));
     },
     "AT+CPBW=1,\"+123\",129,\"0041\""},
    {"set_cscs_ucs2", [](CATChannel& at) { at.cmd_set_cscs_ucs2(); }, "AT+CSCS=\"UCS2\""},
    {"set_cscs_gsm", [](CATChannel& at) { at.cmd_set_cscs_gsm(); }, "AT+CSCS=\"GSM\""},
    {"get_cimi", [](CATChannel& at) { at.cmd_get_cimi(); }, "AT+CIMI"},
    {"get_gsn", [](CATChannel& at) { at.cmd_get_gsn(); }, "AT+GSN"},
    {"check_signal", [](CATChannel& at) { at.cmd_check_signal(); }, "AT+CSQ"},
    {"ipr", [](CATChannel& at) { at.cmd_at_ipr(); }, "AT+IPR=115200"},
    {"OriginalMsg", [](CATChannel& at) { at.cmd_at_OriginalMsg(); }, "AT+URCIND=1"},
    {"NetworkMode", [](CATChannel& at) { at.cmd_at_NetworkMode(2); }, "AT+MODODR=2", 100},
    {"cpin", [](CATChannel& at) { at.cmd_at_cpin(); }, "AT+CPIN?"},
    {"clck", [](CATChannel& at) { at.cmd_at_clck(Parsed<Facility>("SC"), 0, Parsed<PhCode>("1234")); },
     "AT+CLCK=\"SC\",0,\"1234\""},
    {"enter_pin", [](CATChannel& at) { at.cmd_enter_pin(Parsed<PinCode>("1234"), std::nullopt); },
     "AT+CPIN=1234"},
    {"enter_puk",
     [](CATChannel& at) { at.cmd_enter_pin(Parsed<PinCode>("12345678"), Parsed<PinCode>("4321")); },
     "AT+CPIN=12345678,4321"},
    {"set_clip", [](CATChannel& at) { at.cmd_set_clip(); }, "AT+CLIP=1"},
    {"send_dtmf", [](CATChannel& at) { at.cmd_send_dtmf(Parsed<DtmfKey>("#")); }, "AT+VTS=#"},
    {"set_volume", [](CATChannel& at) { at.cmd_set_volume(99); }, "AT+CLVL=5"},
    {"set_sidetone", [](CATChannel& at) { at.cmd_set_sidetone(); }, "AT+SIDET=0"},
    {"set_echo", [](CATChannel& at) { at.cmd_set_echo(-2147483647 - 1, 2147483647); },
     "AT+ECHO=-2147483648,2147483647"},
    {"set_apn", [](CATChannel& at) { at.cmd_set_apn(Parsed<ApnName>("CMNET")); },
     "AT+CGDCONT=1,\"IP\",\"CMNET\""},
    {"quoted pin", [](CATChannel& at) { at.cmd_enter_quoted_pin(Parsed<PhCode>("0012")); },
     "AT+CPIN=\"0012\""},
    {"quoted puk",
     [](CATChannel& at) { at.cmd_enter_quoted_puk(Parsed<PinCode>("12345678"), Parsed<PinCode>("4321")); },
     "AT+CPIN=\"12345678\",\"4321\""},
    {"sendms",
     [](CATChannel& at) {
         at.cmd_sendms(Parsed<PduText>("0891214365870921F311000D91896745230189F70008000400410042"));
     },
     "AT+CMGS=19"},
    {"sendms without a service centre", [](CATChannel& at) { at.cmd_sendms(Parsed<PduText>("0011")); },
     "AT+CMGS=1"},
};

TEST(Commands, GoOutToTheLetterEndedByCarriageReturnAlone) {
    for (const Command& command : commands) {
        ChannelBench bench;
        bench.Open();
        const std::uint64_t start = bench.runtime.Elapsed();
        command.send(bench.channel);
        const std::uint64_t took = bench.runtime.Elapsed() - start;
        EXPECT_GE(took, command.takes) << command.name;
        EXPECT_LE(took, command.takes + 5) << command.name;
        bench.runtime.Sleep(10);
        EXPECT_EQ(bench.serial.Written(), command.line + "\r") << command.name;
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
        std::string reads;
        std::string deletes;
        std::string line;
        for (const char c : bench.serial.Written()) {
            line.push_back(c);
            if (c != '\r') continue;
            (line.starts_with("AT+CMGR=") ? reads : deletes) += line;
            line.clear();
        }
        std::string expectedReads;
        std::string expectedDeletes;
        for (int i = 0; i < 20; ++i) {
            expectedReads += "AT+CMGR=" + std::to_string(i) + "\r";
            expectedDeletes += "AT+CMGD=" + std::to_string(i) + "\r";
        }
        ASSERT_EQ(reads, expectedReads) << "seed " << seed;
        ASSERT_EQ(deletes, expectedDeletes) << "seed " << seed;
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

struct SecretCase {
    const char* name;
    void (*send)(CATChannel& at);
};

TEST(Secrets, NeverReachTheLogHoweverTheEchoComes) {
    const SecretCase cases[] = {
        {"clck", [](CATChannel& at) { at.cmd_at_clck(Parsed<Facility>("SC"), 0, Parsed<PhCode>("73519")); }},
        {"cpin",
         [](CATChannel& at) { at.cmd_enter_pin(Parsed<PinCode>("73519"), Parsed<PinCode>("73519")); }},
        {"code change", [](CATChannel& at) { at.cmd_dial(Parsed<DialString>("**04*73519*73519*73519#")); }},
    };
    for (const SecretCase& secret : cases) {
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
                ASSERT_EQ(log.find(part), std::string::npos) << secret.name << " in pieces of " << piece;
            }
            bench.serial.Feed("\r\n+CSQ: 18,99\r\n");
            bench.runtime.Sleep(150);
            ASSERT_NE(bench.LogContent().find("+CSQ: 18,99"), std::string::npos)
                << secret.name << ": digits come back after the result";
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
