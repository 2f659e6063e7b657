#include "platform/text.h"

#include <gtest/gtest.h>

#include "platform/fixed_text.h"
#include "platform/key_file.h"

namespace varkel {
namespace {

TEST(Text, ReplacesWhatIsIllFormed) {
    EXPECT_EQ(Utf16FromUtf8("я\xFF\xF0\x9F\x98\x80"), u"я\uFFFD\U0001F600");
    EXPECT_EQ(Utf16FromUtf8("\xC0\x80"), u"\uFFFD\uFFFD") << "overlong";
    EXPECT_EQ(Utf16FromUtf8("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "surrogate";
    EXPECT_EQ(Utf16FromUtf8("\xE8\x99"), u"\uFFFD\uFFFD") << "cut short";
    EXPECT_EQ(Utf8FromUtf16(std::u16string(1, char16_t{0xD800})), "\xEF\xBF\xBD") << "lone half of a pair";
}

TEST(Text, CutsAtCharacters) {
    EXPECT_EQ(CutUtf8("虫播", 6), "虫播");
    EXPECT_EQ(CutUtf8("虫播", 5), "虫");
    EXPECT_EQ(CutUtf8("虫播", 2), "");
    EXPECT_EQ(CutUtf8("abc", 2), "ab");
}

TEST(FixedTextTest, KeepsToItsField) {
    struct Record {
        FixedText<4> first;
        FixedText<4> second;
    };
    static_assert(sizeof(Record) == 8);
    Record record;
    EXPECT_TRUE(record.first.Assign("2009"));
    EXPECT_FALSE(record.second.Assign("13800"));
    EXPECT_EQ(record.first.View(), "2009") << "a full field has no NUL";
    EXPECT_EQ(record.second.View(), "1380");
    EXPECT_TRUE(record.second.Assign("1"));
    EXPECT_FALSE(record.second.Append("2345"));
    EXPECT_EQ(record.second, "1234");
}

TEST(KeyFileTest, ReadsSectionsAndReportsTheRest) {
    const KeyFile file = KeyFile::Parse(
        "\xEF\xBB\xBFtop = 1\r\n"
        "[serial]\n"
        "# a comment\n"
        "COM7: = /dev/ttyUSB2\n"
        "nonsense\n"
        "[broken\n"
        "path = \\ResidentFlash2\\bin = x \n"
        "com7: = later");
    EXPECT_EQ(file.Find("", "top"), "1");
    EXPECT_EQ(file.Find("Serial", "COM7:"), "later");
    EXPECT_EQ(file.Find("serial", "path"), "\\ResidentFlash2\\bin = x");
    EXPECT_FALSE(file.Find("serial", "nonsense"));
    ASSERT_EQ(file.Errors().size(), 2u);
    EXPECT_EQ(file.Errors()[0].substr(0, 7), "line 5:");
    EXPECT_EQ(file.Errors()[1].substr(0, 7), "line 6:");
}

}  // namespace
}  // namespace varkel
