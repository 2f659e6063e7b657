// What the program writes for others, against the simulated unit's readers, which share no code with it:
// messages, and the options file of the dialling program.
#include <gtest/gtest.h>
#include <random>

#include "modem/sms_pdu.h"
#include "platform/linux/pppd_language.h"
#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"
#include "simulator/dial_options.h"
#include "simulator/submit_pdu.h"
#include "tests/support/code_pages.h"

namespace varkel::test {
namespace {

constexpr std::pair<char16_t, char16_t> scripts[] = {{0x20, 0x7E},   {0xA1, 0xFF},   {0x391, 0x3C9},
                                                     {0x410, 0x44F}, {0x621, 0x63A}, {0x4E00, 0x9FA5}};

// Up to `longest` UTF-16 units of one script or of all, emoji and control characters among them.
std::u16string RandomText(std::mt19937& random, std::size_t longest) {
    std::u16string text;
    const std::size_t length = 1 + random() % longest;
    const std::size_t only = random() % (std::size(scripts) + 1);
    while (text.size() < length) {
        const auto [first, last] = scripts[only < std::size(scripts) ? only : random() % std::size(scripts)];
        const auto kind = random() % 40;
        if (kind == 0 && length - text.size() >= 2) {
            text += {u'\xD83D', static_cast<char16_t>(0xDE00 + random() % 0x40)};
        } else if (kind == 1) {
            text += static_cast<char16_t>(u"\n\r\t"[random() % 3]);
        } else {
            text += static_cast<char16_t>(first + random() % (last - first + 1u));
        }
    }
    return text;
}

TEST(MessageAgreement, OfRandomTextsBothWays) {
    const CodePage& page = CodePageNamed("GB18030");
    std::mt19937 random(42);
    for (int i = 0; i < 1000; ++i) {
        // Short enough for the 160 bytes of a record, four of which a character may take.
        const std::string text = Utf8FromUtf16(RandomText(random, 40));
        const std::string narrow = NarrowFromUtf8(page, text);
        ASSERT_EQ(Utf8FromNarrow(page, narrow), text);

        SmsPduRecord submit;
        FixedText<512> hex;
        ASSERT_EQ(MakeSubmitRecord(page, "+8613800100500", "8613800000000", narrow, submit),
                  ValueFault::None);
        ASSERT_NE(EncodeSubmitPdu(page, submit, hex), 0u);
        const auto sent = sim::DecodeSubmit(*sim::BytesFromHex(hex.View()));
        ASSERT_TRUE(sent) << text;
        EXPECT_EQ(sent->text, text);
        EXPECT_EQ(sent->number, "8613800000000");

        sim::DeliverOptions options;
        options.from = *sim::ParseAddress("+4915112345678");
        options.centre = "+8613800100500";
        options.timeStamp = std::string("\x62\x11\x12\x41\x40\x75\x00", 7);
        const auto parts = sim::DeliverPdus(text, options);
        ASSERT_EQ(parts.size(), 1u) << text;
        SmsPduRecord received;
        ASSERT_NE(DecodeDeliverPdu(page, sim::HexFromBytes(parts[0]) + "\r\n\r\nOK\r\n", received), 0u)
            << text;
        EXPECT_EQ(Utf8FromNarrow(page, received.TP_UD.View()), text);
        EXPECT_EQ(received.TPA.View(), "4915112345678");
        EXPECT_EQ(received.TP_SCTS.View(), "26112114045700");
    }
}

TEST(DialOptionsAgreement, UserAndPasswordArriveAsTheyAre) {
    constexpr std::string_view characters = "\"\"\\\\\\' #aZ09;$`=\xC3\xB6";
    std::mt19937 random(1);
    const auto anyText = [&] {
        std::string text;
        for (auto left = random() % 12; left > 0; --left)
            text += characters[random() % characters.size()];
        return text;
    };
    for (int i = 0; i < 20'000; ++i) {
        const RasDialParams params{"connet", anyText(), anyText()};
        const auto file = PppdOptions(params);
        ASSERT_TRUE(file);
        const std::string arguments[] = {"call", "connet", "file", "/dev/stdin"};
        const auto options = sim::ParseDialOptions(arguments, [&](const std::string&) { return file; });
        ASSERT_EQ(options.fault, "") << *file;
        ASSERT_EQ(options.user, params.userName) << *file;
        ASSERT_EQ(options.password, params.password) << *file;
    }
}

}  // namespace
}  // namespace varkel::test
