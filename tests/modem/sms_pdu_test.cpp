#include "modem/sms_pdu.h"

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "modem/hex_text.h"
#include "modem/ucs2.h"
#include "tests/modem/reference_pdu.h"
#include "tests/modem/walled_record.h"
#include "tests/support/code_pages.h"

namespace varkel::test {
namespace {

const CodePage& Chinese() {
    return CodePageNamed("GB18030");
}
const CodePage& Russian() {
    return CodePageNamed("CP1251");
}

SmsPduRecord Record(std::string_view centre, std::string_view number, std::string_view text, int dcs = 8) {
    SmsPduRecord record;
    record.SCA.Assign(centre);
    record.TPA.Assign(number);
    record.TP_DCS = static_cast<std::uint8_t>(dcs);
    record.TP_UD.Assign(text);
    return record;
}

std::string Encoded(const SmsPduRecord& record, const CodePage& page = Chinese()) {
    FixedText<512> pdu("left over");
    const std::size_t length = EncodeSubmitPdu(page, record, pdu);
    EXPECT_EQ(length, pdu.Length());
    PduText value;
    EXPECT_TRUE(length == 0 || PduText::Parse(pdu.View(), value) == ValueFault::None);
    return std::string(pdu.View());
}

TEST(SmsPdu, IsEncodedForSending) {
    EXPECT_EQ(Encoded(Record("1234567890123", "9876543210987", "AB")),
              "0891214365870921F311000D91896745230189F70008000400410042");
    EXPECT_EQ(Encoded(Record("", "10086", "")), "0191110005910180F600080000");
    EXPECT_EQ(Encoded(Record("123456789012345", "1234", "\xB3\xE6")),
              "099121436587092143F511000491214300080002866B");
    EXPECT_EQ(Encoded(Record("12", "3", "hello", 0)), "02912111000191F300000005E8329BFD06");
    EXPECT_EQ(Encoded(Record("12", "3", "12345678", 0)), "02912111000191F30000000831D98C56B3DD70");
    EXPECT_EQ(Encoded(Record("12", "3", "\xB3\xE6z", 4)), "02912111000191F300040003B3E67A");
    EXPECT_EQ(Encoded(Record("12", "3", "\xCF", 8), Russian()), "02912111000191F300080002041F");
}

TEST(SmsPdu, IsRefusedRatherThanMalformed) {
    for (const char* number : {"+861", "12a", "1 2", "1\x1A", "12F", "*100#"}) {
        EXPECT_EQ(Encoded(Record(number, "1", "x")), "") << number;
        EXPECT_EQ(Encoded(Record("1", number, "x")), "") << number;
    }
    // 13 digits twice leave room for 115 units in 510 characters.
    const std::string centre = "1234567890123";
    EXPECT_EQ(Encoded(Record(centre, centre, std::string(115, 'x'))).size(), 508u);
    EXPECT_EQ(Encoded(Record(centre, centre, std::string(116, 'x'))), "");
    EXPECT_EQ(Encoded(Record("", "", std::string(122, 'x'))).size(), 508u);
    for (std::size_t length = 123; length <= 160; ++length)
        EXPECT_EQ(Encoded(Record("", "", std::string(length, 'x'))), "");
    // Fields that are full to the last byte, in the other schemes.
    const std::string sixteen = "1234567890123456";
    EXPECT_EQ(Encoded(Record(sixteen, sixteen, std::string(161, 'x'), 0)).size(), 52u + 282);
    EXPECT_EQ(Encoded(Record(sixteen, sixteen, std::string(161, 'x'), 4)).size(), 52u + 322);
}

TEST(SmsPdu, RecordForSendingHoldsWholeNumbers) {
    SmsPduRecord record;
    EXPECT_EQ(MakeSubmitRecord(Chinese(), "+8613800100500", "13800138000", "\xB3\xE6", record),
              ValueFault::None);
    EXPECT_EQ(record.SCA, "8613800100500");
    EXPECT_EQ(record.TPA, "13800138000");
    EXPECT_EQ(record.TP_PID, 0);
    EXPECT_EQ(record.TP_DCS, 8);
    EXPECT_EQ(record.TP_SCTS, "");
    EXPECT_EQ(record.TP_UD, "\xB3\xE6");
    const struct {
        const char* centre;
        const char* number;
        ValueFault fault;
    } cases[] = {
        {"", "1", ValueFault::None},
        {"+123456789012345", "123456789012345", ValueFault::None},
        {"1234567890123456", "1", ValueFault::TooLong},
        {"1", "1234567890123456", ValueFault::TooLong},
        {"1", "", ValueFault::Invalid},
        {"1", "+1", ValueFault::Invalid},
        {"++1", "1", ValueFault::Invalid},
        {"1", "1\x1A\rX", ValueFault::Invalid},
        {"1\"", "1", ValueFault::Invalid},
    };
    for (const auto& example : cases) {
        EXPECT_EQ(MakeSubmitRecord(Chinese(), example.centre, example.number, "x", record), example.fault)
            << example.centre << ' ' << example.number;
        EXPECT_EQ(record.TPA.Empty(), example.fault != ValueFault::None);
    }
    const std::string text = std::string(159, 'x') + "\xB3\xE6";
    EXPECT_EQ(MakeSubmitRecord(Chinese(), "", "1", text, record), ValueFault::None);
    EXPECT_EQ(record.TP_UD, std::string(159, 'x'));
    EXPECT_EQ(MakeSubmitRecord(Russian(), "", "1", text, record), ValueFault::None);
    EXPECT_EQ(record.TP_UD, std::string(159, 'x') + "\xB3");
}

const std::string head = "0891683108100005F0240D91683108108300F0";  // centre, first octet, sender
const std::string time = "90804121000023";
const std::string tail = "\r\n\r\nOK\r\n";

TEST(SmsPdu, OfAReceivedMessageIsRead) {
    SmsPduRecord record;
    const std::string hex = head + "0108" + time + "04866B64AD" + tail;
    EXPECT_EQ(DecodeDeliverPdu(Chinese(), hex, record), 2u);
    EXPECT_EQ(record.SCA, "8613800100500");
    EXPECT_EQ(record.TPA, "8613800138000");
    EXPECT_EQ(record.TP_PID, 1);
    EXPECT_EQ(record.TP_DCS, 8);
    EXPECT_EQ(record.TP_SCTS, "09081412000032");
    EXPECT_EQ(record.TP_UD, "\xB3\xE6\xB2\xA5");
}

TEST(SmsPdu, TextsOfEveryCodingSchemeAreRead) {
    const std::string seven = head + "0000" + time;
    const std::string eight = head + "0004" + time;
    const std::string wide = head + "0008" + time;
    const struct {
        const char* what;
        std::string hex;
        std::size_t result;
        std::string text;
    } cases[] = {
        {"seven bits", seven + "0AE8329BFD4697D9EC37" + tail, 10, "hellohello"},
        {"seven bits, at sign", seven + "03414010" + tail, 3, "A@A"},
        {"seven bits, extension", seven + "029B32" + tail, 2, "€"},
        {"seven bits with nothing behind", seven + "03414010", 0, ""},
        {"eight characters with nothing behind", seven + "0831D98C56B3DD70", 8, "12345678"},
        {"no padding of seven characters", seven + "0731D98C56B3DD00" + tail, 7, "1234567"},
        {"a header of seven bits is text", seven + "08050003CC020100" + tail, 8, "é@ø¿, @@"},
        {"message class", head + "0010" + time + "0141" + tail, 1, "A"},
        {"eight bits", eight + "03B3E67A" + tail, 3, "虫z"},
        {"eight bits, message class", head + "00F5" + time + "0141" + tail, 1, "A"},
        {"both bits", head + "000C" + time + "0141" + tail, 1, "A"},
        {"odd number of octets", wide + "03866B64" + tail, 1, "虫"},
        {"paragraph separator", wide + "0600412029005A" + tail, 3, "A Z"},
        {"part of a long message", wide + "0A05000301020100410042" + tail, 2, "AB"},
        {"header and no text", wide + "06050003010201" + tail, 0, ""},
        {"header longer than the data", wide + "0405000341" + tail, 0, ""},
        {"text cut behind the header", wide + "0A050003010201004100", 0, ""},
        {"header of another kind", wide + "0A05010301020100410042" + tail, 5, "\u0501\u0301\u0201AB"},
        {"no text at all", wide + "00" + tail, 0, ""},
        {"cut before the length", wide, 0, ""},
        {"cut in the text", wide + "0400410", 0, ""},
    };
    for (const auto& example : cases) {
        SmsPduRecord record;
        EXPECT_EQ(DecodeDeliverPdu(Chinese(), example.hex, record), example.result) << example.what;
        EXPECT_EQ(Utf8FromNarrow(Chinese(), record.TP_UD.View()), example.text) << example.what;
    }
}

std::string ToHex(const std::vector<std::uint8_t>& octets) {
    std::string hex(2 * octets.size() + 1, '\0');
    hex.resize(BytesToHex(octets, hex));
    return hex;
}

// The octets that say how long or of which kind others are.
struct Structure {
    int centre = 8;
    int sender = 13;
    int dcs = 8;
    int udl = 134;
};

std::string PduOf(const Structure& structure, const std::string& filler, const std::string& userData) {
    static const std::string octets = [] {
        std::vector<std::uint8_t> all(256);
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = static_cast<std::uint8_t>(i);
        return ToHex(all);
    }();
    const auto octet = [](int value) { return octets.substr(static_cast<std::size_t>(2 * value), 2); };
    const auto fill = [&filler](int count) { return filler.substr(0, static_cast<std::size_t>(2 * count)); };
    return octet(structure.centre) + fill(structure.centre) + "04" + octet(structure.sender) + "91" +
           fill((structure.sender + 1) / 2) + "00" + octet(structure.dcs) + time + octet(structure.udl) +
           userData;
}

void ExpectAsTheRulesSay(const CodePage& page, std::string_view hex) {
    Walled walled;
    const std::size_t result = DecodeDeliverPdu(page, hex, walled.record);
    const DecodedPdu expected = ReferencePdu(page, hex).Decode();
    const SmsPduRecord& record = walled.record;
    ASSERT_TRUE(walled.Stands()) << hex;
    ASSERT_TRUE(result == expected.result && record.SCA == expected.sca && record.TPA == expected.tpa &&
                record.TP_PID == expected.pid && record.TP_DCS == expected.dcs &&
                record.TP_SCTS == expected.scts && record.TP_UD == expected.ud)
        << hex << " gives " << result << ' ' << record.TP_UD.View() << " instead of " << expected.result;
}

// Every pair of values of the structural octets, with data as long as they say and with a PDU of ordinary
// length, with and without a header in front.
TEST(SmsPdu, FollowsTheRulesForEveryPairOfStructuralOctets) {
    using Member = int Structure::*;
    constexpr Member members[] = {&Structure::centre, &Structure::sender, &Structure::dcs, &Structure::udl};
    std::mt19937 random(1);
    std::vector<std::uint8_t> octets(256);
    for (auto& octet : octets)
        octet = static_cast<std::uint8_t>(random());
    const std::string filler = ToHex(octets);
    const std::string datas[] = {filler, filler.substr(0, 2 * 140) + tail, "050003AA0201" + filler};
    for (int first = 0; first < 4; ++first) {
        for (int second = first + 1; second < 4; ++second) {
            for (int pair = 0; pair < 0x10000; ++pair) {
                Structure structure;
                structure.*members[first] = pair >> 8;
                structure.*members[second] = pair & 0xFF;
                const auto data = static_cast<std::size_t>((pair >> 8 ^ pair) % 3);
                ExpectAsTheRulesSay(Chinese(), PduOf(structure, filler, datas[data]));
                ExpectAsTheRulesSay(Chinese(), PduOf(structure, filler, datas[(data + 1) % 3]));
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(SmsPdu, FollowsTheRulesForAnyCharactersAndWhereverItIsCut) {
    const std::string whole = head + "0708" + time + "04866B64AD";
    for (std::size_t length = 0; length <= whole.size(); ++length)
        ExpectAsTheRulesSay(Chinese(), whole.substr(0, length));
    std::mt19937 random(2);
    const std::string_view letters = "0123456789ABCDEF";
    for (int i = 0; i < 200'000; ++i) {
        const CodePage& page = i % 2 == 0 ? Chinese() : Russian();
        std::string hex = i % 4 < 2 ? head + "0" : "";
        for (auto left = random() % 300; left > 0; --left)
            hex.push_back(random() % 64 == 0 ? static_cast<char>(random()) : letters[random() % 16]);
        ExpectAsTheRulesSay(page, hex);
        if (HasFatalFailure()) return;
    }
}

// What was encoded, read back by plain means.
TEST(SmsPdu, EncodesWhateverARecordHolds) {
    std::mt19937 random(3);
    const std::string digits = "987654321012345";
    for (int i = 0; i < 50'000; ++i) {
        std::string text;
        for (auto left = random() % 161; left > 0; --left)
            text.push_back(static_cast<char>(1 + random() % 255));
        const auto number = digits.substr(0, random() % 16);
        const auto centre = digits.substr(0, random() % 16);
        const int dcs = static_cast<int>(random() % 3 * 4);
        const std::string pdu = Encoded(Record(centre, number, text, dcs));
        if (pdu.empty()) {
            ASSERT_TRUE(dcs == 8 && text.size() > 100);
            continue;
        }
        const std::size_t numberEnd = 2 * ((centre.size() + 1) / 2) + 12 + (number.size() + 1) / 2 * 2;
        std::array<std::uint8_t, 256> octets;
        const std::size_t count = HexToBytes(std::string_view(pdu).substr(numberEnd + 8), octets);
        const std::size_t udl = std::stoul(pdu.substr(numberEnd + 6, 2), nullptr, 16);
        ASSERT_EQ(udl, dcs == 0 ? text.size() : count);
        if (dcs == 8) {
            std::array<char, 600> narrow;
            ASSERT_EQ(DecodeUcs2(Chinese(), std::span(octets).first(count), narrow), count / 2);
            ASSERT_EQ(Utf8FromNarrow(Chinese(), narrow.data()), Utf8FromNarrow(Chinese(), text));
        } else if (dcs == 4) {
            ASSERT_EQ(std::string(octets.data(), octets.data() + count), text);
        } else {
            ASSERT_EQ(count, (text.size() * 7 + 7) / 8);
        }
    }
}

}  // namespace
}  // namespace varkel::test
