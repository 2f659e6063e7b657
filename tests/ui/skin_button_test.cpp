#include "ui/toolkit/skin_button.h"

#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/dialog.h"

namespace varkel {
namespace {

constexpr int id = 7;
constexpr Rect place{100, 100, 200, 80};
constexpr std::string_view pictures = "\\ResidentFlash2\\test\\";

constexpr ButtonSpec buttons[] = {{.id = id, .rect = place}};
constexpr DialogSpec spec{.directory = pictures, .buttons = buttons};

constexpr ColorRef normalText = Rgb(1, 2, 3);
constexpr ColorRef pressedText = Rgb(4, 5, 6);

struct ButtonBench : test::UiBench {
    ButtonBench() : dialog(desktop, spec) {
        PutPicture("normal", 'r');
        PutPicture("pressed", 'g');
        PutPicture("disabled", 'b');
        dialog.Show();
    }
    CSkinButton& Button() { return dialog.Get<CSkinButton>(id); }
    bool Attach(const char* normal, const char* pressed, const char* disabled) {
        return Button().Attach(dialog.LoadPicture(normal), dialog.LoadPicture(pressed),
                               dialog.LoadPicture(disabled));
    }

    Dialog dialog;
};

bool HasColor(const Bitmap& picture, ColorRef color) {
    for (int y = place.y; y < place.Bottom(); ++y) {
        for (int x = place.x; x < place.Right(); ++x) {
            if (picture.GetPixel({x, y}) == color) return true;
        }
    }
    return false;
}

TEST(SkinButton, StateChoosesPictureAndCaptionColour) {
    ButtonBench bench;
    ASSERT_TRUE(bench.Attach("normal", "pressed", "disabled"));
    CSkinButton& button = bench.Button();
    button.SetTextColors(normalText, pressedText);
    // Large flat letters, so that some pixels have the pure colour.
    button.SetFont({"", 60, 700});
    button.SetWindowText("HEM");
    button.SetTextOffset(8);

    struct Row {
        unsigned state;
        bool keepNormal;
        char picture;
        ColorRef text;
    };
    constexpr Row rows[] = {
        {0, false, 'r', normalText},
        {1, false, 'r', normalText},  // pressed without the focus
        {4, false, 'b', 0x808080},
        {20, false, 'b', 0x808080},
        {16, false, 'g', normalText},
        {16, true, 'r', normalText},
        {17, false, 'g', pressedText},
        {17, true, 'g', pressedText},
        {5, false, 'r', normalText},
        {21, false, 'r', normalText},
        {17 | 2 | 8 | 32, false, 'g', pressedText},  // other bits mean nothing
        {16 | 64, true, 'r', normalText},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.state);
        button.SetKeepNormalWhenFocused(row.keepNormal);
        const auto surface = bench.desktop.GetGraphics().CreateSurface(Display::screen);
        button.DrawItem(surface->GetCanvas(), ItemState(row.state));
        const Bitmap& picture = surface->Picture();
        // The picture fills the whole button, and nothing beside it.
        EXPECT_EQ(test::LetterOf(picture.GetPixel({place.x, place.y})), row.picture);
        EXPECT_EQ(test::LetterOf(picture.GetPixel({place.Right() - 1, place.Bottom() - 1})), row.picture);
        EXPECT_EQ(picture.GetPixel({place.Right(), place.y}), 0u);
        for (const ColorRef color : {normalText, pressedText, ColorRef{0x808080}})
            EXPECT_EQ(HasColor(picture, color), color == row.text) << color;
    }
    bench.dialog.EndDialog(DialogResult::Ok);
    bench.Settle();
}

TEST(SkinButton, AttachStopsAtTheFirstPictureThatIsMissing) {
    struct Row {
        const char* pictures[3];
        bool attached;
        char drawn;  // a plain button is none of the pictures
    };
    const Row rows[] = {
        {{"normal", "pressed", "disabled"}, true, 'r'},   {{"normal", "pressed", "pressed"}, true, 'r'},
        {{"normal", "pressed", "missing"}, false, '?'},   {{"normal", "missing", "disabled"}, false, '?'},
        {{"missing", "pressed", "disabled"}, false, '?'},
    };
    for (const Row& row : rows) {
        ButtonBench bench;
        EXPECT_EQ(bench.Attach(row.pictures[0], row.pictures[1], row.pictures[2]), row.attached);
        EXPECT_EQ(bench.Button().IsOwnerDrawn(), row.attached);
        bench.Settle();
        const Point inside{place.x + 40, place.y + 40};
        EXPECT_EQ(test::LetterOf(bench.display.Picture().GetPixel(inside)), row.drawn);
    }
}

TEST(SkinButton, LooksPressedWhileTheFingerIsOnItAndPlainAfterwards) {
    ButtonBench bench;
    ASSERT_TRUE(bench.Attach("normal", "pressed", "disabled"));
    const auto look = [&bench] { return test::LetterOf(bench.display.Picture().GetPixel({150, 140})); };
    const Point on = test::UiBench::Middle(place);
    bench.Down(on);
    EXPECT_EQ(look(), 'g');
    bench.Move({0, 0});
    EXPECT_EQ(look(), 'r');
    bench.Move(on);
    EXPECT_EQ(look(), 'g');
    bench.Up(on);
    EXPECT_EQ(look(), 'r');
    bench.Button().EnableWindow(false);
    bench.Down(on);
    EXPECT_EQ(look(), 'b');
}

}  // namespace
}  // namespace varkel
