// What PDUs are made of: hexadecimal text, semi-octets, septets, UCS2 and the default alphabet.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "modem/gsm_alphabet.h"
#include "modem/hex_text.h"
#include "modem/semi_octets.h"
#include "modem/septets.h"
#include "modem/ucs2.h"
#include "tests/support/code_pages.h"

namespace varkel::test {
namespace {

using Octets = std::vector<std::uint8_t>;

// What `convert` writes into a buffer of `room` items, which must stay within it.
template <class Item, class Convert>
std::vector<Item> Into(std::size_t room, Convert convert) {
    std::vector<Item> buffer(room + 1, Item{0x55});
    const std::size_t count = convert(std::span(buffer).first(room));
    EXPECT_LE(count, room);
    EXPECT_EQ(buffer[room], Item{0x55}) << "behind the buffer";
    buffer.resize(count);
    return buffer;
}

template <class Convert>
std::string TextOf(std::size_t room, Convert convert) {
    const std::vector<char> text = Into<char>(room, convert);
    return {text.begin(), text.end()};
}

std::string Hex(const Octets& octets, std::size_t room = 600) {
    return TextOf(room, [&](std::span<char> to) { return BytesToHex(octets, to); });
}
Octets FromHex(std::string_view hex, std::size_t room = 300) {
    return Into<std::uint8_t>(room, [&](std::span<std::uint8_t> to) { return HexToBytes(hex, to); });
}
std::string Swap(std::string_view digits, std::size_t room = 40) {
    return TextOf(room, [&](std::span<char> to) { return SwapDigits(digits, to); });
}
std::string Unswap(std::string_view digits, std::size_t room = 40) {
    return TextOf(room, [&](std::span<char> to) { return UnswapDigits(digits, to); });
}
Octets Pack(std::string_view text, std::size_t room = 300) {
    return Into<std::uint8_t>(room, [&](std::span<std::uint8_t> to) { return Pack7Bit(text, to); });
}
std::string Unpack(const Octets& octets, std::size_t room = 300) {
    return TextOf(room, [&](std::span<char> to) { return Unpack7Bit(octets, to); });
}

TEST(HexText, GoesBothWays) {
    Octets all;
    for (int i = 0; i < 256; ++i)
        all.push_back(static_cast<std::uint8_t>(i));
    EXPECT_EQ(Hex({0x00, 0x9A, 0xBC, 0xDE, 0xF1}), "009ABCDEF1");
    EXPECT_EQ(FromHex(Hex(all)), all);
    EXPECT_EQ(Hex({1, 2}, 4), "01") << "the NUL needs room as well";
    EXPECT_EQ(Hex({1}, 0), "");
    EXPECT_EQ(FromHex("010203", 2), (Octets{1, 2}));
    EXPECT_EQ(FromHex("01020"), (Octets{1, 2}));
    EXPECT_EQ(FromHex("0A0a:0\r\n"), (Octets{0x0A, 0x2A, 0x30, 0x33})) << "any character has a value";
}

TEST(SemiOctets, SwapInPairsWithAFiller) {
    EXPECT_EQ(Swap("13800138000"), "3108108300F0");
    EXPECT_EQ(Unswap("3108108300F0"), "13800138000");
    EXPECT_EQ(Unswap("90804121000023"), "09081412000032");
    EXPECT_EQ(Swap(""), "");
    EXPECT_EQ(Unswap(""), "");
    EXPECT_EQ(Unswap("F1"), "1");
    EXPECT_EQ(Unswap("1F"), "F1") << "a filler only at the end";
    EXPECT_EQ(Unswap("FF"), "F") << "and only one";
    EXPECT_EQ(Unswap("A2B"), "2AB");
    EXPECT_EQ(Swap("12345", 5), "2143");
    EXPECT_EQ(Unswap("214365", 5), "12345");
}

TEST(Septets, PackAsTheStandardShows) {
    const std::pair<std::string, Octets> cases[] = {
        {"", {}},
        {"hellohello", {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}},
        {"1234567", {0x31, 0xD9, 0x8C, 0x56, 0xB3, 0xDD, 0x00}},
        {"12345678", {0x31, 0xD9, 0x8C, 0x56, 0xB3, 0xDD, 0x70}},
    };
    for (const auto& [text, octets] : cases) {
        EXPECT_EQ(Pack(text + '\0'), octets) << text;
        EXPECT_TRUE(Unpack(octets).starts_with(text)) << text;
    }
    EXPECT_EQ(Unpack(Octets(7, 0xFF)), std::string(8, '\x7F')) << "the carry is a character";
    EXPECT_EQ(Unpack(Octets(224, 0xFF), 161), std::string(160, '\x7F'));
    EXPECT_EQ(Pack(std::string(100, 'x'), 50).size(), 50u);
}

TEST(GsmAlphabet, IsShownInTheDisplayCodePage) {
    const auto shown = [](std::string_view codes, const char* page, std::size_t room = 300) {
        const CodePage& codePage = CodePageNamed(page);
        return Utf8FromNarrow(
            codePage, TextOf(room, [&](std::span<char> to) { return NarrowFromGsm(codePage, codes, to); }));
    };
    std::string all;
    for (int code = 0; code < 128; ++code) {
        if (code != 0x1B) all.push_back(static_cast<char>(code));
    }
    EXPECT_EQ(shown(all, "GB18030"),
              "@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
              "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà");
    EXPECT_EQ(shown("\x1B\x0A\x1B\x14\x1B(\x1B)\x1B/\x1B<\x1B=\x1B>\x1B@\x1B"
                    "e",
                    "GB18030"),
              "\f^{}\\[~]|€");
    EXPECT_EQ(shown("\x1B"
                    "a\x1B\x1B"
                    "b\x1B",
                    "GB18030"),
              "a b ");
    EXPECT_EQ(shown(std::string_view("a\0b", 3), "CP1251"), "a@b");
    EXPECT_EQ(shown("\x05\x10\x1B"
                    "e",
                    "CP1251"),
              "??€");
    EXPECT_EQ(shown("\x05\x05", "GB18030", 4), "é") << "two bytes each, and the NUL";
    EXPECT_EQ(shown("a", "GB18030", 0), "");
}

TEST(Ucs2, GoesThroughTheDisplayCodePage) {
    const auto decoded = [](const CodePage& page, const Octets& octets, std::size_t room,
                            std::size_t expectedUnits) {
        std::string narrow(room + 1, '#');
        EXPECT_EQ(DecodeUcs2(page, octets, std::span(narrow).first(room)), expectedUnits);
        EXPECT_EQ(narrow[room], '#');
        return std::string(narrow.c_str());
    };
    const auto encoded = [](const CodePage& page, std::string_view narrow, std::size_t room = 300) {
        return Hex(Into<std::uint8_t>(
            room, [&](std::span<std::uint8_t> to) { return EncodeUcs2(page, narrow, to); }));
    };
    const CodePage& chinese = CodePageNamed("GB18030");
    const CodePage& russian = CodePageNamed("CP1251");
    EXPECT_EQ(encoded(chinese, "\xB3\xE6\xB2\xA5"), "866B64AD");
    EXPECT_EQ(encoded(chinese, "\x94\x39\xFC\x36"), "D83DDE00");
    EXPECT_EQ(encoded(chinese, "\x94\x39\xFC\x36", 3), "") << "no half of a pair";
    EXPECT_EQ(encoded(russian, "\xCF\x98"), "041FFFFD");
    EXPECT_EQ(encoded(russian, std::string(160, 'a')).size(), 512u);
    EXPECT_EQ(decoded(chinese, FromHex("866B202964ADFF"), 161, 3), "\xB3\xE6 \xB2\xA5");
    EXPECT_EQ(decoded(russian, FromHex("041F866B"), 161, 2), "\xCF?");
    EXPECT_EQ(decoded(chinese, FromHex("0041866B"), 3, 2), "A");
    EXPECT_EQ(decoded(chinese, FromHex("D83DDE00D83D"), 161, 3), "\x94\x39\xFC\x36?");
    EXPECT_EQ(decoded(chinese, Octets(300, 0x41), 161, 128).size() % 2, 0u);
}

}  // namespace
}  // namespace varkel::test
