#include "simulator/charset.h"

#include <gtest/gtest.h>

namespace varkel::sim {
namespace {

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

}  // namespace
}  // namespace varkel::sim
