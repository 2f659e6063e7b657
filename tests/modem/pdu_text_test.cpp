// What PDUs are made of; tests/modem/sms_pdu_test.cpp holds all of it to the rules of PDUs.
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

TEST(PduText, FillsTheRoomThatThereIsAndNoMore) {
    const CodePage& page = CodePageNamed("GB18030");
    const std::vector<std::uint8_t> octets(300, 0x41);
    const std::string text(300, '1');
    using Chars = std::span<char>;
    using Octets = std::span<std::uint8_t>;
    for (std::size_t room = 0; room <= 40; ++room) {
        const std::size_t beforeNul = room == 0 ? 0 : room - 1;
        const auto chars = [&](auto convert) { return Into<char>(room, convert).size(); };
        const auto bytes = [&](auto convert) { return Into<std::uint8_t>(room, convert).size(); };
        EXPECT_EQ(chars([&](Chars to) { return BytesToHex(octets, to); }), beforeNul / 2 * 2);
        EXPECT_EQ(chars([&](Chars to) { return SwapDigits(text, to); }), room / 2 * 2);
        EXPECT_EQ(chars([&](Chars to) { return UnswapDigits(text, to); }), room);
        EXPECT_EQ(chars([&](Chars to) { return Unpack7Bit(octets, to); }), beforeNul);
        EXPECT_EQ(chars([&](Chars to) { return NarrowFromGsm(page, text, to); }), beforeNul);
        EXPECT_EQ(bytes([&](Octets to) { return HexToBytes(text, to); }), room);
        EXPECT_EQ(bytes([&](Octets to) { return Pack7Bit(text, to); }), room);
        EXPECT_EQ(bytes([&](Octets to) { return EncodeUcs2(page, text, to); }), room / 2 * 2);
        // This one counts units.
        EXPECT_EQ(chars([&](Chars to) { return DecodeUcs2(page, octets, to) - 128; }), 0u);
    }
}

TEST(PduText, IsReadFromHexadecimalCharactersOfAnyKind) {
    const auto octets =
        Into<std::uint8_t>(8, [](std::span<std::uint8_t> to) { return HexToBytes("0A0a:0\r\n5", to); });
    EXPECT_EQ(octets, (std::vector<std::uint8_t>{0x0A, 0x2A, 0x30, 0x33}));
}

TEST(GsmAlphabet, IsShownInTheDisplayCodePage) {
    const auto shown = [](std::string_view codes, const char* page, std::size_t room = 300) {
        const CodePage& codePage = CodePageNamed(page);
        const auto text =
            Into<char>(room, [&](std::span<char> to) { return NarrowFromGsm(codePage, codes, to); });
        return Utf8FromNarrow(codePage, {text.data(), text.size()});
    };
    std::string all;
    for (int code = 0; code < 128; ++code) {
        if (code != 0x1B) all.push_back(static_cast<char>(code));
    }
    EXPECT_EQ(shown(all, "GB18030"),
              "@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
              "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà");
    EXPECT_EQ(shown("\x1B\n\x1B\x14\x1B(\x1B)\x1B/\x1B<\x1B=\x1B>\x1B@\x1B\x65", "GB18030"), "\f^{}\\[~]|€");
    EXPECT_EQ(shown("\x1B\x61\x1B\x1B\x62\x1B", "GB18030"), "a b ");
    EXPECT_EQ(shown(std::string_view("a\0b", 3), "CP1251"), "a@b");
    EXPECT_EQ(shown("\x05\x10\x1B\x65", "CP1251"), "??€");
    EXPECT_EQ(shown("\x05\x05", "GB18030", 4), "é") << "two bytes each, and the NUL";
}

}  // namespace
}  // namespace varkel::test
