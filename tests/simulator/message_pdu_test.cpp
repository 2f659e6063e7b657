#include <gtest/gtest.h>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/deliver_pdu.h"
#include "simulator/network_clock.h"
#include "simulator/submit_pdu.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::Repeated;

// 3 August 2021, 12:30:45, two hours ahead of UTC.
const NetworkClock summer{1'627'986'645, 8};

DeliverOptions From(std::string_view from) {
    return {ParseAddress(from).value(), "+8613800100500", TimeStampOctets(summer, 0), std::nullopt, 0xCC};
}

TEST(DeliverPdu, IsBuiltOctetByOctet) {
    const std::string stamp = "12803021035480";
    struct Case {
        const char* name;
        const char* from;
        const char* text;
        std::optional<TextCoding> coding;
        std::string behindCentre;
    };
    const Case cases[] = {
        {"seven bits", "+4670", "hellohello", {}, "04049164070000" + stamp + "0AE8329BFD4697D9EC37"},
        {"a national number of even length", "1008", "@£€", {}, "04048101800000" + stamp + "0480C0A60C"},
        {"a name, counted in semi-octets", "INFO", "", {}, "0407D049A7F1090000" + stamp + "00"},
        {"beyond the first plane", "10086", "Я😀", {}, "0405810180F60008" + stamp + "06042FD83DDE00"},
        {"UCS2 although seven bits would do", "10086", "AB", TextCoding::Ucs2,
         "0405810180F60008" + stamp + "0400410042"},
        {"data", "10086", "é", TextCoding::EightBit, "0405810180F60004" + stamp + "02C3A9"},
    };
    for (const Case& each : cases) {
        DeliverOptions options = From(each.from);
        options.coding = each.coding;
        EXPECT_EQ(HexFromBytes(DeliverPdus(each.text, options).at(0)),
                  "0891683108100005F0" + each.behindCentre)
            << each.name;
    }
}

TEST(LongText, IsSplitIntoPartsThatSayTheirPlace) {
    const DeliverOptions options = From("10086");
    struct Case {
        const char* name;
        std::string text;
        std::vector<std::size_t> characters;  // UTF-16 units of each part
    };
    const Case cases[] = {
        {"160 septets fit", Repeated("A", 160), {160}},
        {"70 fit", Repeated("я", 70), {70}},
        {"71 do not", Repeated("я", 71), {67, 4}},
        {"no pair is cut", Repeated("я", 66) + Repeated("😀", 4), {66, 8}},
        {"no escape is cut", Repeated("A", 152) + "€€€€€", {152, 5}},
        {"the most", Repeated("A", 1530), std::vector<std::size_t>(10, 153)},
        {"more than that", Repeated("A", 1531), {}},
    };
    for (const Case& each : cases) {
        std::vector<std::size_t> characters;
        std::string whole;
        const auto parts = DeliverPdus(each.text, options);
        for (const std::string& pdu : parts) {
            const auto decoded = DecodeDeliver(pdu);
            ASSERT_TRUE(decoded) << each.name;
            characters.push_back(Utf16FromUtf8(decoded->text).size());
            whole += decoded->text;
            const TextPart place{0xCC, static_cast<int>(parts.size()), static_cast<int>(characters.size())};
            EXPECT_EQ(decoded->part, parts.size() > 1 ? std::optional(place) : std::nullopt) << each.name;
        }
        EXPECT_EQ(characters, each.characters) << each.name;
        EXPECT_EQ(whole, parts.empty() ? "" : each.text) << each.name;
    }
    // 7 septets of header and fill bit, 8 of text; "A" shifted by the fill bit is 82.
    EXPECT_EQ(HexFromBytes(DeliverPdus(Repeated("A", 161), options).at(1)).substr(18),
              "4405810180F60000128030210354800F050003CC020282C16030180C0601");
}

TEST(SubmitPdu, IsCheckedFieldByField) {
    const std::string head = "0011000D91896745230189F70008";
    const std::string full = std::string(280, 'A');
    struct Case {
        const char* name;
        std::string pdu;
        std::size_t announced;
        PduFault fault;
    };
    const Case cases[] = {
        {"as required", "0891214365870921F311000D91896745230189F70008000400410042", 19, PduFault::None},
        {"no centre", head + "000400410042", 19, PduFault::None},
        {"an empty centre of two octets", "0191" + head.substr(2) + "000400410042", 19, PduFault::None},
        {"announced too short", head + "000400410042", 18, PduFault::WrongLength},
        {"announced too long", head + "000400410042", 20, PduFault::WrongLength},
        {"a centre past the end", "20" + head.substr(2), 13, PduFault::CutShort},
        {"nothing", "", 0, PduFault::CutShort},
        {"only a centre", "00", 0, PduFault::CutShort},
        {"a delivery", "0010" + head.substr(4) + "000400410042", 19, PduFault::NotSubmit},
        {"address past the end", "0011000D918967", 6, PduFault::CutShort},
        {"address of 255 digits", "001100FF91896745230189F700080004", 15, PduFault::CutShort},
        {"text past the end", head + "0004004100", 18, PduFault::CutShort},
        {"text left over", head + "00040041004200", 20, PduFault::LeftOver},
        {"140 octets", head + "008C" + full, 155, PduFault::None},
        {"141 octets", head + "008D" + full + "AA", 156, PduFault::TextTooLong},
        {"a length that wrapped to nothing", head + "0000" + full + full.substr(0, 232), 271,
         PduFault::TextTooLong},
        {"seven bits", "0011000B818310832143F500000005E8329BFD06", 19, PduFault::None},
        {"seven bits, one octet short", "0011000B818310832143F500000005E8329BFD", 18, PduFault::CutShort},
        {"160 characters of seven bits", "0011000B818310832143F5000000A0" + full, 154, PduFault::None},
        {"161 characters of seven bits", "0011000B818310832143F5000000A1" + full + "AA", 155,
         PduFault::TextTooLong},
        {"absolute validity", "001900038121F3000801020304050607020041", 18, PduFault::None},
    };
    for (const Case& each : cases) {
        const auto octets = BytesFromHex(each.pdu);
        ASSERT_TRUE(octets) << each.name;
        EXPECT_EQ(TextOf(CheckSubmitPdu(*octets, each.announced)), TextOf(each.fault)) << each.name;
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
                const auto delivered = DecodeDeliver(damaged);
                const auto submitted = DecodeSubmit(damaged);
                EXPECT_LE(delivered ? delivered->text.size() : 0, 3u * 255);
                EXPECT_LE(submitted ? submitted->text.size() : 0, 3u * 160);
            }
            EXPECT_FALSE(DecodeDeliver(pdu.substr(0, at)));
            EXPECT_FALSE(DecodeSubmit(pdu.substr(0, at)));
        }
    }
}

TEST(NetworkClock, StampsTheTimeOfTheZone) {
    EXPECT_EQ(TimeStampText(TimeStampOctets({}, 86'399'999)), "2024-01-02 07:59:59 +08:00");
    EXPECT_EQ(TimeStampText(TimeStampOctets({1'709'164'800, -14}, 0)), "2024-02-28 20:30:00 -03:30");
    EXPECT_EQ(HexFromBytes(TimeStampOctets({1'709'164'800, -14}, 0)), "42208202030049");
}

}  // namespace
}  // namespace varkel::sim
