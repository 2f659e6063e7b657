#include <gtest/gtest.h>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"
#include "simulator/network_clock.h"
#include "simulator/random.h"
#include "simulator/septets.h"
#include "simulator/submit_pdu.h"

namespace varkel::sim {
namespace {

// 3 August 2021, 12:30:45, two hours ahead of UTC.
const NetworkClock summer{1'627'986'645, 8};

DeliverOptions From(std::string_view from) {
    return {ParseAddress(from).value(), "+8613800100500", TimeStampOctets(summer, 0), std::nullopt, 0xCC};
}

std::string Hex(std::string_view text, const DeliverOptions& options) {
    const auto pdus = DeliverPdus(text, options);
    return pdus.size() == 1 ? HexFromBytes(pdus.front()) : std::to_string(pdus.size()) + " messages";
}

TEST(DeliverPdu, IsBuiltOctetByOctet) {
    const std::string centre = "0891683108100005F0";
    const std::string stamp = "12803021035480";
    struct Case {
        const char* name;
        const char* from;
        const char* text;
        std::optional<TextCoding> coding;
        std::string behindCentre;
    };
    const Case cases[] = {
        {"the text that every handbook packs",
         "+46708251358",
         "hellohello",
         {},
         "040B916407281553F80000" + stamp + "0AE8329BFD4697D9EC37"},
        {"a national number of even length", "1008", "@£$", {}, "04048101800000" + stamp + "03808000"},
        {"two septets for a character of the extension table",
         "10086",
         "€",
         {},
         "0405810180F60000" + stamp + "029B32"},
        {"eight septets in seven octets",
         "10086",
         "AAAAAAAA",
         {},
         "0405810180F60000" + stamp + "08C16030180C0683"},
        {"a name, counted in semi-octets", "INFO", "", {}, "0407D049A7F1090000" + stamp + "00"},
        {"Chinese", "10086", "你好", {}, "0405810180F60008" + stamp + "044F60597D"},
        {"Cyrillic and beyond the first plane",
         "10086",
         "Я😀",
         {},
         "0405810180F60008" + stamp + "06042FD83DDE00"},
        {"UCS2 although seven bits would do", "10086", "AB", TextCoding::Ucs2,
         "0405810180F60008" + stamp + "0400410042"},
        {"data", "10086", "é", TextCoding::EightBit, "0405810180F60004" + stamp + "02C3A9"},
    };
    for (const Case& each : cases) {
        DeliverOptions options = From(each.from);
        options.coding = each.coding;
        EXPECT_EQ(Hex(each.text, options), centre + each.behindCentre) << each.name;
    }
    DeliverOptions without = From("10086");
    without.centre = "";
    EXPECT_EQ(Hex("", without), "000405810180F60000" + stamp + "00");
    DeliverOptions forced = From("10086");
    forced.coding = TextCoding::SevenBit;
    EXPECT_TRUE(DeliverPdus("Я", forced).empty()) << "no place in the default alphabet";
}

TEST(LongText, IsSplitIntoPartsThatSayTheirPlace) {
    const DeliverOptions options = From("10086");
    EXPECT_EQ(DeliverPdus(std::string(160, 'A'), options).size(), 1u);
    const auto pdus = DeliverPdus(std::string(161, 'A'), options);
    ASSERT_EQ(pdus.size(), 2u);
    // 7 septets of header and fill bit, 153 of text; "A" shifted by the fill bit is 82.
    EXPECT_EQ(HexFromBytes(pdus[0]).substr(18),
              "4405810180F6000012803021035480A0050003CC020182" +
                  HexFromBytes(PackSeptets(std::string(153, 'A'), 1)).substr(2));
    EXPECT_EQ(HexFromBytes(pdus[1]).substr(18),
              "4405810180F60000128030210354800F050003CC020282C16030180C0601")
        << "8 characters";

    struct Case {
        const char* name;
        std::string text;
        std::vector<std::size_t> characters;  // UTF-16 units of each part
    };
    const auto many = [](std::string_view text, int times) {
        std::string all;
        for (int i = 0; i < times; ++i)
            all += text;
        return all;
    };
    const Case cases[] = {
        {"70 fit", many("я", 70), {70}},
        {"71 do not", many("я", 71), {67, 4}},
        {"no pair is cut", many("я", 66) + many("😀", 4), {66, 8}},
        {"no escape is cut", std::string(152, 'A') + "€€€€€", {152, 5}},
        {"the most", std::string(1530, 'A'), std::vector<std::size_t>(10, 153)},
        {"more than that", std::string(1531, 'A'), {}},
    };
    for (const Case& each : cases) {
        std::vector<std::size_t> characters;
        std::string whole;
        int number = 0;
        const auto parts = DeliverPdus(each.text, options);
        for (const std::string& pdu : parts) {
            const auto decoded = DecodeDeliver(pdu);
            ASSERT_TRUE(decoded) << each.name;
            characters.push_back(Utf16FromUtf8(decoded->text).size());
            whole += decoded->text;
            ++number;
            if (parts.size() > 1) {
                EXPECT_EQ(decoded->part, (TextPart{0xCC, static_cast<int>(parts.size()), number}));
            }
        }
        EXPECT_EQ(characters, each.characters) << each.name;
        if (!parts.empty()) {
            EXPECT_EQ(whole, each.text) << each.name;
        }
    }
}

TEST(Pdus, ThatAreDamagedAreRefusedOrReadWithinTheirBounds) {
    const std::string pdus[] = {DeliverPdus(std::string(161, '@'), From("INFO"))[0],
                                DeliverPdus("Я", From("+8613800138000"))[0],
                                *BytesFromHex("0011000B916407281553F80000AA0AE8329BFD4697D9EC37")};
    for (const std::string& pdu : pdus) {
        for (std::size_t at = 0; at < pdu.size(); ++at) {
            for (int value = 0; value < 256; ++value) {
                std::string damaged = pdu;
                damaged[at] = static_cast<char>(value);
                if (const auto read = DecodeDeliver(damaged)) {
                    EXPECT_LE(read->text.size(), 3u * 255);
                }
                if (const auto read = DecodeSubmit(damaged)) {
                    EXPECT_LE(read->text.size(), 3u * 160);
                }
            }
            EXPECT_FALSE(DecodeDeliver(pdu.substr(0, at)));
            EXPECT_FALSE(DecodeSubmit(pdu.substr(0, at)));
        }
    }
}

TEST(MessageAddress, IsANumberOrAName) {
    for (const char* const refused : {"", "+", "123456789012345678901", "twelve chars", "Имя"})
        EXPECT_FALSE(ParseAddress(refused)) << refused;
    EXPECT_EQ(ParseAddress("+86-138")->kind, AddressKind::Name);
    EXPECT_EQ(HexFromBytes(CentreOctets("10086")), "04810180F6");
    EXPECT_EQ(HexFromBytes(CentreOctets("")), "00");
}

TEST(NetworkClock, StampsTheTimeOfTheZone) {
    EXPECT_EQ(TimeStampText(TimeStampOctets({}, 0)), "2024-01-01 08:00:00 +08:00");
    EXPECT_EQ(TimeStampText(TimeStampOctets({}, 86'399'999)), "2024-01-02 07:59:59 +08:00");
    EXPECT_EQ(TimeStampText(TimeStampOctets({1'709'164'800, -14}, 0)), "2024-02-28 20:30:00 -03:30");
    EXPECT_EQ(HexFromBytes(TimeStampOctets({1'709'164'800, -14}, 0)), "42208202030049");
}

}  // namespace
}  // namespace varkel::sim
