// Edit fields and the soft keyboard.
#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/edit_field.h"

namespace varkel::test {
namespace {

constexpr int upper = 1;
constexpr int lower = 2;
constexpr int digits = 3;
constexpr int password = 4;
constexpr Rect lowerPlace{20, 300, 300, 150};
constexpr EditSpec edits[] = {
    {.id = upper, .rect = {20, 60, 400, 64}, .maxUnits = 10},
    {.id = lower, .rect = lowerPlace, .maxUnits = 70, .multiLine = true},
    {.id = digits, .rect = {20, 130, 400, 64}, .input = EditInput::PhoneNumber, .maxUnits = 5},
    {.id = password, .rect = {20, 200, 400, 64}, .maxUnits = 8, .password = true, .softKeyboard = false},
};
constexpr DialogSpec spec{.edits = edits};

using enum KeyAction;

struct TypingBench : UiBench {
    explicit TypingBench(const std::string& languageName = "english") : UiBench("night", languageName) {
        dialog.Show();
        Settle();
    }
    EditField& Field(int id) { return dialog.Get<EditField>(id); }
    const std::string& Text(int id) { return Field(id).GetWindowText(); }
    // By what stands on it, or by what it does.
    void TapKey(const auto& key) {
        EXPECT_FALSE(keyboard.PlaceOf(key).Empty()) << testing::PrintToString(key);
        Tap(keyboard.PlaceOf(key));
    }
    void TapKeys(const auto&... keys) { (TapKey(keys), ...); }

    Dialog dialog{desktop, spec};
};

struct Typing : testing::Test, TypingBench {
    // Another keyboard program's word.
    void Post(const char* message) {
        windows.PostMessage(dialog.Window(), {windows.RegisterWindowMessage(message), 0, 0});
        Settle();
    }
};

TEST_F(Typing, TheKeyboardDocksWhereTheFieldStaysVisibleAndTellsTheDialog) {
    constexpr Rect below{1, 285, 798, 194}, above{1, 1, 798, 194};
    EXPECT_TRUE(dialog.SipRect().Empty());
    Tap(Field(upper).Place());
    Settle();
    EXPECT_EQ(dialog.SipRect(), below);
    EXPECT_EQ(keyboard.Place(), below);
    dialog.SetFocus(&Field(lower));
    Settle();
    EXPECT_EQ(dialog.SipRect(), above);
    EXPECT_EQ(keyboard.Place(), above);

    Post("UM_UMOVESIPDOWN");
    EXPECT_EQ(dialog.SipRect(), below);
    dialog.SetFocus(nullptr);
    Post("UM_UMODIFYFOCUS");
    EXPECT_EQ(dialog.Focus(), &Field(lower));

    // Put away, and back by another touch of the same field.
    TapKeys(Done);
    EXPECT_FALSE(keyboard.IsWindowVisible());
    Tap(lowerPlace);
    EXPECT_TRUE(keyboard.IsWindowVisible());
    dialog.EndDialog(DialogResult::Ok);
    Settle();
    EXPECT_FALSE(keyboard.IsWindowVisible());
}

TEST_F(Typing, TheKeyboardTypesLatinCyrillicAndSymbols) {
    Tap(lowerPlace);
    // Two touches lock the capitals.
    TapKeys(Shift, "h", "e", Shift, Shift, "y", "o", Shift, "u", " ");
    TapKeys(National, Shift, "я", "ш", Symbols, "7", "@");
    EXPECT_EQ(Text(lower), "HeYOu Яш7@");
    TapKeys(Back, Back, Back);
    EXPECT_EQ(Text(lower), "HeYOu Я");
}

TEST(SoftKeyboard, BeginsWithThePageThatTheFieldNeeds) {
    {
        TypingBench english;
        english.Tap(english.Field(digits).Place());
        english.TapKeys("1", "+");
        english.Tap(english.Field(upper).Place());
        english.TapKeys("q");
    }
    {
        TypingBench arabic("arabic");
        arabic.Tap(arabic.Field(lower).Place());
        arabic.TapKeys("س", "ل", "ا", "م", " ", Latin, "o", "k", Symbols, National, ".");
        EXPECT_EQ(arabic.Text(lower), "سلام ok.");
    }
    TypingBench russian("russian");
    russian.Tap(russian.Field(upper).Place());
    // What a keyboard of its own types needs none.
    russian.TapKeys("ж", Done);
    russian.Tap(russian.Field(password).Place());
    EXPECT_FALSE(russian.keyboard.IsWindowVisible());
}

TEST_F(Typing, AHeldKeyGoesThroughItsCharactersUnlessTheFingerLeavesIt) {
    const std::pair<Ticks, std::string> rows[] = {
        {100, "n"}, {SoftKeyboard::holdTime + 50, "ñ"}, {10 * SoftKeyboard::holdTime, "ñ"}};
    Tap(lowerPlace);
    const Point key = Middle(keyboard.PlaceOf("n"));
    for (const auto& [time, text] : rows) {
        Field(lower).SetWindowText("");
        Down(key);
        RunFor(time);
        Up(key);
        EXPECT_EQ(Text(lower), text) << time;
    }
    Field(lower).SetWindowText("");
    Down(key);
    Up(Middle(keyboard.PlaceOf("m")));
    EXPECT_EQ(Text(lower), "");
}

TEST_F(Typing, AHeldBackspaceDeletesOn) {
    Tap(lowerPlace);
    Field(lower).SetWindowText("twenty characters...");
    Down(Middle(keyboard.PlaceOf(Back)));
    EXPECT_EQ(Text(lower).size(), 19u);
    RunFor(SoftKeyboard::holdTime + 3 * SoftKeyboard::backspaceTime + 10);
    EXPECT_EQ(Text(lower).size(), 15u);
    // A box that comes up takes the key from the finger.
    boxes.ShowMessageBox("load failed", "");
    RunFor(1000);
    EXPECT_EQ(Text(lower).size(), 15u);
}

TEST_F(Typing, AFieldTakesWhatItMayHold) {
    const std::tuple<int, std::string, std::string> rows[] = {
        {upper, "0123456789ab", "0123456789"},
        {upper, "12345678 😀", "12345678 "},  // two units, and only one is left
        {upper, "a\r\n\x1A\x7F-b", "a-b"},
        {upper, "a\xFF", "a\uFFFD"},
        {digits, "+4a9-8#*7", "+498#"},
        {password, "пароль", "пароль"},
    };
    for (const auto& [field, typed, text] : rows) {
        Field(field).SetWindowText("");
        dialog.SetFocus(&Field(field));
        Key(KeyCode::None, typed);
        EXPECT_EQ(Text(field), text);
    }
}

TEST_F(Typing, AFieldMovesAndDeletesByCharacters) {
    const std::pair<std::vector<KeyCode>, std::string> rows[] = {
        {{KeyCode::Back}, "aéя"},
        {{KeyCode::Left, KeyCode::Left, KeyCode::Back}, "aя😀"},
        {{KeyCode::Home, KeyCode::Delete, KeyCode::Delete}, "я😀"},
        {{KeyCode::Home, KeyCode::Back, KeyCode::Left, KeyCode::End, KeyCode::Right, KeyCode::Delete},
         "aéя😀"},
    };
    for (const auto& [keys, text] : rows) {
        for (const int id : {upper, password}) {
            Field(id).SetWindowText("aéя😀");
            dialog.SetFocus(&Field(id));
            for (const KeyCode key : keys)
                Key(key);
            EXPECT_EQ(Text(id), text);
        }
    }
}

TEST_F(Typing, ATapPutsTheCaretWhereItWas) {
    Graphics& graphics = desktop.GetGraphics();
    const LogFont font = HeiFont(32);
    for (const int id : {upper, password}) {
        Field(id).SetWindowText("abcdef");
        const std::string shown = id == password ? "\u2022\u2022\u2022" : "abc";
        const int x = Field(id).Place().x + 12 + graphics.MeasureText(shown, font).width;
        Tap(Point{x + 1, Field(id).Place().y + 30});
        Key(KeyCode::None, "X");
        EXPECT_EQ(Text(id), "abcXdef");
    }
    // On the second line of a text that breaks at its blanks.
    Field(lower).SetWindowText("one two three four five six");
    const auto lines = CutIntoLines(graphics, Text(lower), font, lowerPlace.width - 26);
    ASSERT_GE(lines.size(), 2u);
    dialog.SetFocus(&Field(lower));  // the keyboard goes out of the way
    const int lineHeight = graphics.MeasureText("Ag", font).height;
    Tap(Point{lowerPlace.x + 12, lowerPlace.y + 4 + lineHeight * 3 / 2});
    Key(KeyCode::None, "X");
    EXPECT_EQ(Text(lower).find('X'), lines[1].begin);
}

TEST_F(Typing, LinesBreakAtBlanksAndLineFeedsAndInsideLongWordsOnly) {
    Graphics& graphics = desktop.GetGraphics();
    const LogFont font = HeiFont(32);
    const int width = graphics.MeasureText("MMMM", font).width;
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"", {""}},
        {"MM MM", {"MM", "MM"}},
        {"MMMMMM", {"MMMM", "MM"}},
        {"M\n\nM\n", {"M", "", "M", ""}},
        {"MMMM MMMM", {"MMMM", "MMMM"}},
        {"ЖЖЖЖЖЖЖЖ", {}},
    };
    for (const auto& [text, expected] : rows) {
        std::vector<std::string> lines;
        for (const TextLine& line : CutIntoLines(graphics, text, font, width))
            lines.push_back(text.substr(line.begin, line.end - line.begin));
        EXPECT_TRUE(expected.empty() || lines == expected) << text;
        for (const std::string& line : lines) {
            EXPECT_LE(graphics.MeasureText(line, font).width, width);
            EXPECT_EQ(Utf8FromUtf16(Utf16FromUtf8(line)), line);  // no character is cut
        }
    }
    // Narrower than any character: one a line.
    EXPECT_EQ(CutIntoLines(graphics, "abc", font, 1).size(), 3u);
}

}  // namespace
}  // namespace varkel::test
