// Edit fields and the soft keyboard.
#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/edit_field.h"

namespace varkel {
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

struct TypingBench : test::UiBench {
    explicit TypingBench(const std::string& languageName = "english")
        : UiBench("night", languageName), dialog(desktop, spec) {
        dialog.Show();
        Settle();
    }
    EditField& Field(int id) { return dialog.Get<EditField>(id); }
    const std::string& Text(int id) { return Field(id).GetWindowText(); }
    void TapKeys(std::initializer_list<std::string_view> keys) {
        for (const std::string_view key : keys) {
            ASSERT_FALSE(keyboard.PlaceOf(key).Empty()) << key;
            Tap(keyboard.PlaceOf(key));
        }
    }
    void TapKey(KeyAction action) { Tap(keyboard.PlaceOf(action)); }

    Dialog dialog;
};

TEST(SoftKeyboard, DocksWhereTheFieldStaysVisibleAndTellsTheDialog) {
    TypingBench bench;
    EXPECT_TRUE(bench.dialog.SipRect().Empty());
    bench.Tap(bench.Field(upper).Place());
    bench.Settle();
    EXPECT_EQ(bench.dialog.SipRect(), (Rect{1, 285, 798, 194}));
    EXPECT_EQ(bench.keyboard.Place(), bench.dialog.SipRect());
    bench.dialog.SetFocus(&bench.Field(lower));
    bench.Settle();
    EXPECT_EQ(bench.dialog.SipRect(), (Rect{1, 1, 798, 194}));
    EXPECT_EQ(bench.keyboard.Place(), bench.dialog.SipRect());

    // Another keyboard program's word counts as well.
    bench.windows.PostMessage(bench.dialog.Window(),
                              {bench.windows.RegisterWindowMessage("UM_UMOVESIPDOWN"), 0, 0});
    bench.Settle();
    EXPECT_EQ(bench.dialog.SipRect(), (Rect{1, 285, 798, 194}));
    bench.dialog.SetFocus(nullptr);
    bench.windows.PostMessage(bench.dialog.Window(),
                              {bench.windows.RegisterWindowMessage("UM_UMODIFYFOCUS"), 0, 0});
    bench.Settle();
    EXPECT_EQ(bench.dialog.Focus(), &bench.Field(lower));

    // Put away, and back by another touch of the same field.
    bench.TapKey(KeyAction::Done);
    EXPECT_FALSE(bench.keyboard.IsWindowVisible());
    bench.Tap(lowerPlace);
    EXPECT_TRUE(bench.keyboard.IsWindowVisible());
    bench.dialog.EndDialog(DialogResult::Ok);
    bench.Settle();
    EXPECT_FALSE(bench.keyboard.IsWindowVisible());
}

TEST(SoftKeyboard, TypesLatinCyrillicAndSymbols) {
    TypingBench bench;
    bench.Tap(lowerPlace);
    bench.TapKey(KeyAction::Shift);
    bench.TapKeys({"h", "e"});
    bench.TapKey(KeyAction::Shift);
    bench.TapKey(KeyAction::Shift);  // locked
    bench.TapKeys({"y", "o"});
    bench.TapKey(KeyAction::Shift);
    bench.TapKeys({"u", " "});
    bench.TapKey(KeyAction::National);
    bench.TapKey(KeyAction::Shift);
    bench.TapKeys({"я", "ш"});
    bench.TapKey(KeyAction::Symbols);
    bench.TapKeys({"7", "@"});
    EXPECT_EQ(bench.Text(lower), "HeYOu Яш7@");
    bench.TapKey(KeyAction::Back);
    bench.TapKey(KeyAction::Back);
    bench.TapKey(KeyAction::Back);
    EXPECT_EQ(bench.Text(lower), "HeYOu Я");
}

TEST(SoftKeyboard, BeginsWithThePageThatTheFieldNeeds) {
    {
        TypingBench english;
        english.Tap(english.Field(digits).Place());
        english.TapKeys({"1", "+"});
        english.Tap(english.Field(upper).Place());
        english.TapKeys({"q"});
    }
    {
        TypingBench arabic("arabic");
        arabic.Tap(arabic.Field(lower).Place());
        arabic.TapKeys({"س", "ل", "ا", "م", " "});
        arabic.TapKey(KeyAction::Latin);
        arabic.TapKeys({"o", "k"});
        arabic.TapKey(KeyAction::Symbols);
        arabic.TapKey(KeyAction::National);
        arabic.TapKeys({"."});
        EXPECT_EQ(arabic.Text(lower), "سلام ok.");
    }
    TypingBench russian("russian");
    russian.Tap(russian.Field(upper).Place());
    russian.TapKeys({"ж"});
    // What a keyboard of its own types needs none.
    russian.TapKey(KeyAction::Done);
    russian.Tap(russian.Field(password).Place());
    EXPECT_FALSE(russian.keyboard.IsWindowVisible());
}

TEST(SoftKeyboard, AHeldKeyGoesThroughItsCharacters) {
    const std::pair<Ticks, std::string> rows[] = {
        {100, "n"}, {SoftKeyboard::holdTime + 50, "ñ"}, {10 * SoftKeyboard::holdTime, "ñ"}};
    for (const auto& [time, text] : rows) {
        TypingBench bench;
        bench.Tap(lowerPlace);
        const Point key = test::UiBench::Middle(bench.keyboard.PlaceOf("n"));
        bench.Down(key);
        bench.RunFor(time);
        bench.Up(key);
        EXPECT_EQ(bench.Text(lower), text) << time;
    }
}

TEST(SoftKeyboard, AFingerThatLeavesTheKeyTypesNothing) {
    TypingBench bench;
    bench.Tap(lowerPlace);
    bench.Down(test::UiBench::Middle(bench.keyboard.PlaceOf("n")));
    bench.Up(test::UiBench::Middle(bench.keyboard.PlaceOf("m")));
    EXPECT_EQ(bench.Text(lower), "");
}

TEST(SoftKeyboard, AHeldBackspaceDeletesOn) {
    TypingBench bench;
    bench.Tap(lowerPlace);
    bench.Field(lower).SetWindowText("twenty characters...");
    bench.Down(test::UiBench::Middle(bench.keyboard.PlaceOf(KeyAction::Back)));
    EXPECT_EQ(bench.Text(lower).size(), 19u);
    bench.RunFor(SoftKeyboard::holdTime + 3 * SoftKeyboard::backspaceTime + 10);
    EXPECT_EQ(bench.Text(lower).size(), 15u);
    // A box that comes up takes the key from the finger.
    bench.boxes.ShowMessageBox("load failed", "");
    bench.RunFor(1000);
    EXPECT_EQ(bench.Text(lower).size(), 15u);
}

TEST(EditField, TakesWhatItMayHold) {
    struct Row {
        int field;
        std::string typed;
        std::string text;
    };
    const Row rows[] = {
        {upper, "0123456789ab", "0123456789"},
        {upper, "12345678 😀", "12345678 "},  // two units, and only one is left
        {upper,
         "a\r\n\x1A\x7F"
         "b",
         "ab"},
        {upper, "a\xFF", "a\uFFFD"},
        {digits, "+4a9-8#*7", "+498#"},
        {password, "пароль", "пароль"},
    };
    for (const Row& row : rows) {
        TypingBench bench;
        bench.Tap(bench.Field(row.field).Place());
        bench.Key(KeyCode::None, row.typed);
        EXPECT_EQ(bench.Text(row.field), row.text);
    }
}

TEST(EditField, MovesAndDeletesByCharacters) {
    const std::pair<std::vector<KeyCode>, std::string> rows[] = {
        {{KeyCode::Back}, "aéя"},
        {{KeyCode::Left, KeyCode::Left, KeyCode::Back}, "aя😀"},
        {{KeyCode::Home, KeyCode::Delete, KeyCode::Delete}, "я😀"},
        {{KeyCode::Home, KeyCode::Back, KeyCode::Left, KeyCode::End, KeyCode::Right, KeyCode::Delete},
         "aéя😀"},
    };
    for (const auto& [keys, text] : rows) {
        for (const int id : {upper, password}) {
            TypingBench bench;
            bench.Field(id).SetWindowText("aéя😀");
            bench.dialog.SetFocus(&bench.Field(id));
            for (const KeyCode key : keys)
                bench.Key(key);
            EXPECT_EQ(bench.Text(id), text);
        }
    }
}

TEST(EditField, ATapPutsTheCaretWhereItWas) {
    TypingBench bench;
    Graphics& graphics = bench.desktop.GetGraphics();
    const LogFont font = HeiFont(32);
    for (const int id : {upper, password}) {
        bench.Field(id).SetWindowText("abcdef");
        const std::string shown = id == password ? "\u2022\u2022\u2022" : "abc";
        const int x = bench.Field(id).Place().x + 12 + graphics.MeasureText(shown, font).width;
        bench.Tap(Point{x + 1, bench.Field(id).Place().y + 30});
        bench.Key(KeyCode::None, "X");
        EXPECT_EQ(bench.Text(id), "abcXdef");
    }
    // On the second line of a text that breaks at its blanks.
    bench.Field(lower).SetWindowText("one two three four five six");
    const auto lines = CutIntoLines(graphics, bench.Text(lower), font, lowerPlace.width - 26);
    ASSERT_GE(lines.size(), 2u);
    bench.dialog.SetFocus(&bench.Field(lower));  // the keyboard goes out of the way
    const int lineHeight = graphics.MeasureText("Ag", font).height;
    bench.Tap(Point{lowerPlace.x + 12, lowerPlace.y + 4 + lineHeight * 3 / 2});
    bench.Key(KeyCode::None, "X");
    EXPECT_EQ(bench.Text(lower).find('X'), lines[1].begin);
}

TEST(TextLines, BreakAtBlanksAndLineFeedsAndInsideLongWordsOnly) {
    test::UiBench bench;
    Graphics& graphics = bench.desktop.GetGraphics();
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
}  // namespace varkel
