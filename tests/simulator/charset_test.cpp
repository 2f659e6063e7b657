#include "simulator/charset.h"

#include <gtest/gtest.h>

namespace varkel::sim {
namespace {

TEST(CharsetTest, GoesThroughTheDefaultAlphabetAndBack) {
    std::string septets;
    for (char septet = 0; septet < 0x7F; ++septet) {
        if (septet != 0x1B) septets += septet;
    }
    septets += "\x7F\x1B\x0A\x1B\x14\x1B\x28\x1B\x29\x1B\x2F\x1B\x3C\x1B\x3D\x1B\x3E\x1B\x40\x1B\x65";
    const std::u16string text = Utf16FromGsm(septets);
    EXPECT_EQ(text.size(), 127u + 10u);
    EXPECT_EQ(GsmFromUtf16(text), septets);
    EXPECT_EQ(text.substr(127), u"\f^{}\\[~]|€");
    EXPECT_EQ(Utf16FromGsm(std::string("\0\x11\x02 A", 5)), u"@_$ A");
    EXPECT_EQ(Utf16FromGsm("a\x1B"), u"a ") << "an escape with nothing behind it";
    EXPECT_EQ(Utf16FromGsm("\x1B\x41"), u" ") << "or with nothing known";
    EXPECT_EQ(GsmFromUtf16(u"Привет"), std::nullopt);
    EXPECT_EQ(GsmFromUtf16(u"\xFFFF"), std::nullopt) << "the place of the escape holds no character";
}

struct OnTheLine {
    Charset set;
    std::u16string_view text;
    std::string_view line;
};

TEST(CharsetTest, SaysTextsAsTheCommandLineHasThem) {
    const OnTheLine cases[] = {
        {Charset::Gsm, u"a_b",
         "a\x11"
         "b"},
        {Charset::Gsm, u"\"q\"", "\\22q\\22"},
        {Charset::Gsm, u"€",
         "\x1B"
         "e"},
        {Charset::Ira, u"a\\b", "a\\5Cb"},
        {Charset::Ucs2, u"Aж", "00410436"},
        {Charset::Ucs2, u"", ""},
    };
    for (const OnTheLine& each : cases) {
        EXPECT_EQ(OnLine(each.text, each.set), each.line) << each.line;
        EXPECT_EQ(FromLine(each.line, each.set), each.text) << each.line;
    }
    EXPECT_EQ(OnLine(u"ж", Charset::Gsm), "?");
    EXPECT_EQ(OnLine(u"ж", Charset::Ira), "?");
    EXPECT_EQ(FromLine("00e0", Charset::Ucs2), u"à") << "either case";
    for (const std::string_view bad : {"004", "00410", "0g41", "0041004"})
        EXPECT_EQ(FromLine(bad, Charset::Ucs2), std::nullopt) << bad;
    for (const std::string_view bad : {"\\2", "\\zz", "\x80"})
        EXPECT_EQ(FromLine(bad, Charset::Gsm), std::nullopt) << bad;
    EXPECT_EQ(FromLine("\x01", Charset::Ira), std::nullopt);
}

TEST(CharsetTest, HasNames) {
    for (const Charset set : {Charset::Gsm, Charset::Ucs2, Charset::Ira})
        EXPECT_EQ(CharsetNamed(NameOf(set)), set);
    EXPECT_EQ(CharsetNamed("gsm"), std::nullopt);
}

}  // namespace
}  // namespace varkel::sim
