#include "platform/code_page.h"

#include <array>
#include <gtest/gtest.h>
#include <iconv.h>
#include <random>

#include "platform/linux/display_code_page.h"
#include "platform/linux/iconv_code_page.h"
#include "platform/text.h"
#include "tests/support/code_pages.h"
#include "tests/support/memory_files.h"

namespace varkel {
namespace {

using test::CodePageNamed;

std::u16string Wide(const CodePage& page, std::string_view narrow, std::size_t room = 300) {
    std::u16string wide(room, u'#');
    wide.resize(page.MultiByteToWideChar(narrow, wide));
    return wide;
}

std::string Narrow(const CodePage& page, std::u16string_view wide, std::size_t room = 300) {
    std::string narrow(room, '#');
    narrow.resize(page.WideCharToMultiByte(wide, narrow));
    return narrow;
}

TEST(CodePageTest, ConvertsBothWays) {
    const struct {
        const char* page;
        std::string narrow;
        std::u16string wide;
    } samples[] = {
        {"GB18030", std::string("abc~\\\0\xB3\xE6\x84\x31\xA4\x39", 12),
         std::u16string(u"abc~\\\0虫\uFFFF", 8)},
        {"CP1252", "S\xE3o Jo\xE3o \x80", u"São João €"},
        {"CP949", "\xC7\xD1\xB1\xDB", u"한글"},
    };
    for (const auto& [name, narrow, wide] : samples) {
        EXPECT_EQ(Wide(CodePageNamed(name), narrow), wide) << name;
        EXPECT_EQ(Narrow(CodePageNamed(name), wide), narrow) << name;
    }
}

TEST(CodePageTest, ReplacesWhatFitsNowhere) {
    const CodePage& chinese = CodePageNamed("GB18030");
    EXPECT_EQ(Wide(chinese, "\x80"), u"€") << "an older code of it";
    EXPECT_EQ(Wide(chinese, "a\xFF\xB3"), u"a\uFFFD\uFFFD");
    EXPECT_EQ(Wide(chinese, "\xB3\nb"), u"\uFFFD\nb") << "never takes ASCII along";
    EXPECT_EQ(Wide(chinese, "\x81\x30\x81"), u"\uFFFD0\uFFFD");
    EXPECT_EQ(Wide(chinese, "\x84\x31\xA5\x30"), u"\uFFFD1\uFFFD0") << "between the two ranges";
    EXPECT_EQ(Wide(chinese, "\xE3\x32\x9A\x36"), u"\uFFFD2\uFFFD6") << "above U+10FFFF";
    EXPECT_EQ(Wide(CodePageNamed("CP1251"), "\x98"), u"\uFFFD");
    EXPECT_EQ(Narrow(CodePageNamed("CP1251"), u"虫й\U0001F600é"), "?\xE9??");
    const char16_t halves[] = {0xDE00, u'a', 0xD83D, u'b', 0xD83D, 0};
    EXPECT_EQ(Narrow(chinese, halves), "?a?b?");
}

TEST(CodePageTest, CutsAtCharacters) {
    const CodePage& chinese = CodePageNamed("GB18030");
    const std::string narrow = "a\xB3\xE6\x94\x39\xFC\x36z";
    const std::u16string wide = u"a虫\U0001F600z";
    const std::size_t bytes[] = {0, 1, 1, 3, 3, 3, 3, 7, 8, 8};
    for (std::size_t room = 0; room < std::size(bytes); ++room) {
        EXPECT_EQ(Narrow(chinese, wide, room), narrow.substr(0, bytes[room])) << room;
        EXPECT_EQ(CutNarrow(chinese, narrow, room), narrow.substr(0, bytes[room])) << room;
        EXPECT_EQ(NarrowFromUtf8(chinese, Utf8FromUtf16(wide), room), narrow.substr(0, bytes[room])) << room;
    }
    const std::size_t units[] = {0, 1, 2, 2, 4, 5, 5};
    for (std::size_t room = 0; room < std::size(units); ++room)
        EXPECT_EQ(Wide(chinese, narrow, room), wide.substr(0, units[room])) << room;
    EXPECT_EQ(CutNarrow(CodePageNamed("CP1251"), "\xCF\xF0\xE8", 2), "\xCF\xF0");
    EXPECT_EQ(Utf8FromNarrow(chinese, narrow), "a虫\xF0\x9F\x98\x80z");
    EXPECT_EQ(NarrowFromUtf8(chinese, "虫播"), "\xB3\xE6\xB2\xA5");
}

// What iconv makes of one character; empty when it refuses.
template <class From>
std::string ByIconv(iconv_t handle, const From* character, std::size_t count) {
    char out[16];
    char* to = out;
    std::size_t left = sizeof out;
    auto* from = const_cast<char*>(reinterpret_cast<const char*>(character));
    std::size_t bytes = count * sizeof(From);
    iconv(handle, nullptr, nullptr, nullptr, nullptr);
    if (iconv(handle, &from, &bytes, &to, &left) == static_cast<std::size_t>(-1)) return {};
    return {out, sizeof out - left};
}

TEST(CodePageTest, AgreesWithIconvOnEveryCharacter) {
    for (const char* name : {"GB18030", "CP936", "CP950", "CP1251", "CP1252", "CP1256"}) {
        const CodePage& page = CodePageNamed(name);
        const iconv_t toNarrow = iconv_open(name, "UTF-16LE");
        const iconv_t toWide = iconv_open("UTF-16LE", name);
        for (char32_t c = 1; c <= 0x10FFFF; c += c < 0x20000 ? 1 : 251) {
            if (c >= 0xD800 && c <= 0xDFFF) continue;
            const bool far = c > 0xFFFF;
            const char16_t units[] = {static_cast<char16_t>(far ? 0xD800 + ((c - 0x10000) >> 10) : c),
                                      static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
            const std::string expected = ByIconv(toNarrow, units, far ? 2 : 1);
            char narrow[4];
            const std::size_t count = page.WideCharToMultiByte({units, far ? 2u : 1u}, narrow);
            const std::string_view code(narrow, count);
            ASSERT_EQ(code, expected.empty() ? "?" : expected) << name << " U+" << std::hex << unsigned{c};
            if (expected.empty()) continue;
            const std::string back = ByIconv(toWide, narrow, count);
            char16_t wide[2];
            const std::size_t got = page.MultiByteToWideChar(code, wide);
            ASSERT_EQ(std::string_view(reinterpret_cast<const char*>(wide), got * 2), back)
                << name << " U+" << std::hex << unsigned{c};
            ASSERT_EQ(page.CharNext(code), count);
        }
        iconv_close(toNarrow);
        iconv_close(toWide);
    }
}

TEST(CodePageTest, TakesAnyBytesAndKeepsToItsRoom) {
    std::mt19937 random(1);
    for (const char* name : {"GB18030", "CP949", "CP1251"}) {
        const CodePage& page = CodePageNamed(name);
        for (int i = 0; i < 20'000; ++i) {
            std::string narrow;
            for (auto left = random() % 12; left > 0; --left)
                narrow.push_back(
                    static_cast<char>(random() % 3 == 0 ? random() % 128 : 128 + random() % 128));
            std::array<char16_t, 16> wide;
            wide.fill(u'#');
            const std::size_t room = random() % 13;
            const std::size_t units = page.MultiByteToWideChar(narrow, std::span(wide).first(room));
            ASSERT_LE(units, room);
            ASSERT_EQ(wide[room], u'#');
            std::size_t walked = 0;
            while (walked < narrow.size())
                walked += page.CharNext(std::string_view(narrow).substr(walked));
            ASSERT_EQ(walked, narrow.size());
            const std::string_view cut = CutNarrow(page, narrow, room);
            ASSERT_TRUE(Wide(page, narrow).starts_with(Wide(page, cut)));
            ASSERT_EQ(Wide(page, cut) + Wide(page, std::string_view(narrow).substr(cut.size())),
                      Wide(page, narrow));
        }
    }
}

TEST(CodePageTest, RefusesPagesThatCannotHoldItsTexts) {
    for (const char* name : {"", "nonsense", "UTF-8", "UTF-16", "UTF-7", "EUC-JP", "ISO-2022-JP", "HZ",
                             "CP037", "SHIFT_JIS", "GB18030//IGNORE", "CP1255"})
        EXPECT_EQ(IconvCodePage::Create(name), nullptr) << name;
}

TEST(CodePageTest, IsThatOfTheCurrentLanguage) {
    test::MemoryFiles files;
    for (const std::string_view name : languageNames)
        files.WriteWhole("\\ResidentFlash2\\bin\\Language\\" + std::string(name) + ".txt", "");
    std::string problem;
    Language language(files, "english");
    const auto first = [&](std::string_view name, const char* system) {
        const DisplayCodePage page(language, system, [&problem](std::string_view text) { problem = text; });
        Wide(page, "\xD0\xC7");
        EXPECT_TRUE(language.Change(name));
        return Wide(page, "\xD0\xC7");
    };
    EXPECT_EQ(first("russian", "GB18030"), u"РЗ");
    EXPECT_EQ(first("portugal", "GB18030"), u"ÐÇ");
    EXPECT_EQ(first("arabic", "GB18030"), u"ذا");
    EXPECT_EQ(first("english", "GB18030"), u"星");
    EXPECT_EQ(first("chinese", "CP949"), u"槿");
    EXPECT_EQ(problem, "");
    EXPECT_EQ(first("english", "CP0"), u"\uFFFD\uFFFD");
    EXPECT_EQ(problem, "there is no code page CP0; texts are kept in ASCII");
}

}  // namespace
}  // namespace varkel
