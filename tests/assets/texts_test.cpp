// The texts of all languages: none is missing, spoilt, or of another shape than the English one.
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

#include "platform/key_file.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/text.h"
#include "tests/support/scratch.h"

namespace varkel::test {
namespace {

KeyFile Texts(const std::string& language) {
    ScratchDirectory scratch;
    LinuxUnitFiles files(scratch / "flash", VARKEL_ASSETS);
    const auto text = files.ReadWhole("\\ResidentFlash2\\bin\\Language\\" + language + ".txt", 256 * 1024);
    EXPECT_TRUE(text) << language;
    return KeyFile::Parse(text.value_or(""));
}

// "%d" and "%s", in their order.
std::string Placeholders(const std::string& text) {
    std::string found;
    for (std::size_t at = 0; (at = text.find('%', at)) != std::string::npos; at += 2)
        found += text.substr(at, 2);
    return found;
}

TEST(Texts, OfAllLanguagesHaveTheSameKeysAndPlaceholders) {
    const KeyFile english = Texts("english");
    std::set<std::string> keys;
    for (const KeyFile::Entry& entry : english.Entries()) {
        EXPECT_TRUE(keys.insert(entry.key).second) << entry.key << " stands twice";
        const std::string placeholders = Placeholders(entry.value);
        EXPECT_TRUE(placeholders.empty() || placeholders == "%d" || placeholders == "%s") << entry.key;
    }
    EXPECT_GT(keys.size(), 96u);
    for (const char* language : {"english", "chinese", "tchinese", "russian", "portugal", "arabic"}) {
        const KeyFile texts = Texts(language);
        EXPECT_TRUE(texts.Errors().empty()) << language << " " << texts.Errors()[0];
        EXPECT_EQ(texts.Entries().size(), english.Entries().size()) << language;
        for (const KeyFile::Entry& entry : english.Entries()) {
            const auto text = texts.Find(entry.section, entry.key);
            ASSERT_TRUE(text && !text->empty()) << language << " " << entry.key;
            EXPECT_EQ(Utf8FromUtf16(Utf16FromUtf8(*text)), *text) << language << " " << entry.key;
            EXPECT_EQ(text->find("\xEF\xBF\xBD"), std::string::npos) << language << " " << entry.key;
            EXPECT_EQ(Placeholders(*text), Placeholders(entry.value)) << language << " " << entry.key;
            // More than 60 characters of a message make the write screen warn.
            if (entry.key.starts_with("IDS_PHRASESTR")) {
                EXPECT_LE(Utf16FromUtf8(*text).size(), 60u) << language << " " << *text;
            }
        }
    }
}

// A key without a text would stand on the screen as itself, and one that nobody names is six lines for
// nothing.
TEST(Texts, AreThereForEveryKeyThatTheProgramNamesAndForNoOther) {
    const KeyFile english = Texts("english");
    const std::string begin = "\"IDS_";
    std::set<std::string> named;
    for (const auto& file : std::filesystem::recursive_directory_iterator(VARKEL_SOURCES)) {
        if (file.path().extension() != ".cpp" && file.path().extension() != ".h") continue;
        const std::string source = FileContent(file.path());
        for (std::size_t at = 0; (at = source.find(begin, at)) != std::string::npos; at += begin.size()) {
            const std::string name = source.substr(at + 1, source.find('"', at + 1) - at - 1);
            if (name == "IDS_") continue;  // what all keys begin with
            const char* const section = name == "IDS_3G" ? "Total_Title" : "GPRS";
            EXPECT_TRUE(english.Find(section, name)) << name << " in " << file.path();
            named.insert(name);
        }
    }
    for (const KeyFile::Entry& entry : english.Entries())
        EXPECT_TRUE(named.contains(entry.key)) << entry.key;
}

}  // namespace
}  // namespace varkel::test
