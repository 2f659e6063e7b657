// The program's message codec against the simulated network's, which shares no code with it.
#include <array>
#include <gtest/gtest.h>
#include <random>

#include "modem/hex_text.h"
#include "modem/sms_pdu.h"
#include "platform/text.h"
#include "simulator/deliver_pdu.h"
#include "simulator/submit_pdu.h"
#include "tests/support/code_pages.h"

namespace varkel::test {
namespace {

struct Script {
    char16_t first;
    char16_t last;
};
constexpr Script scripts[] = {{0x20, 0x7E},   {0xA1, 0xFF},   {0x391, 0x3C9},
                              {0x410, 0x44F}, {0x621, 0x63A}, {0x4E00, 0x9FA5}};

// Up to `longest` UTF-16 units of one script or of all, emoji and control characters among them.
std::u16string RandomText(std::mt19937& random, std::size_t longest) {
    std::u16string text;
    const std::size_t length = 1 + random() % longest;
    const std::size_t only = random() % (std::size(scripts) + 1);
    while (text.size() < length) {
        const Script& script = scripts[only < std::size(scripts) ? only : random() % std::size(scripts)];
        const auto kind = random() % 40;
        if (kind == 0 && length - text.size() >= 2) {
            text += {u'\xD83D', static_cast<char16_t>(0xDE00 + random() % 0x40)};
        } else if (kind == 1) {
            text += static_cast<char16_t>(u"\n\r\t"[random() % 3]);
        } else {
            text += static_cast<char16_t>(script.first + random() % (script.last - script.first + 1u));
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
        std::array<std::uint8_t, 256> bytes{};
        const std::string octets(bytes.begin(), bytes.begin() + HexToBytes(hex.View(), bytes));
        const auto sent = sim::DecodeSubmit(octets);
        ASSERT_TRUE(sent) << text;
        EXPECT_EQ(sent->text, text);
        EXPECT_EQ(sent->number, "8613800000000");

        sim::DeliverOptions options;
        options.from = *sim::ParseAddress("+4915112345678");
        options.centre = "+8613800100500";
        options.timeStamp = std::string("\x62\x11\x12\x41\x40\x75\x00", 7);
        const auto parts = sim::DeliverPdus(text, options);
        ASSERT_EQ(parts.size(), 1u) << text;
        std::string answer;
        for (const char octet : parts[0]) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            answer += {digits[static_cast<unsigned char>(octet) >> 4],
                       digits[static_cast<unsigned char>(octet) & 15]};
        }
        SmsPduRecord received;
        ASSERT_NE(DecodeDeliverPdu(page, answer + "\r\n\r\nOK\r\n", received), 0u) << text;
        EXPECT_EQ(Utf8FromNarrow(page, received.TP_UD.View()), text);
        EXPECT_EQ(received.TPA.View(), "4915112345678");
        EXPECT_EQ(received.TP_SCTS.View(), "26112114045700");
    }
}

}  // namespace
}  // namespace varkel::test
