#include "ui/toolkit/skin_button.h"

#include <gtest/gtest.h>

#include "tests/support/ui_bench.h"
#include "ui/toolkit/dialog.h"

namespace varkel::test {
namespace {

constexpr int id = 7;
constexpr Rect place{100, 100, 200, 80};
constexpr std::string_view pictures = "\\ResidentFlash2\\test\\";

constexpr ButtonSpec buttons[] = {{.id = id, .rect = place}};
constexpr DialogSpec spec{.directory = pictures, .buttons = buttons};

constexpr ColorRef normalText = Rgb(1, 2, 3);
constexpr ColorRef pressedText = Rgb(4, 5, 6);

struct SkinButton : testing::Test, UiBench {
    SkinButton() {
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
    char Look() { return LetterOf(display.Picture().GetPixel({150, 140})); }

    Dialog dialog{desktop, spec};
};

bool HasColor(const Bitmap& picture, ColorRef color) {
    for (int y = place.y; y < place.Bottom(); ++y) {
        for (int x = place.x; x < place.Right(); ++x) {
            if (picture.GetPixel({x, y}) == color) return true;
        }
    }
    return false;
}

TEST_F(SkinButton, StateChoosesPictureAndCaptionColour) {
    ASSERT_TRUE(Attach("normal", "pressed", "disabled"));
    CSkinButton& button = Button();
    button.SetTextColors(normalText, pressedText);
    // Large flat letters, so that some pixels have the pure colour.
    button.SetFont({"", 60, 700});
    button.SetWindowText("HEM");
    button.SetTextOffset(8);

    struct Case {
        unsigned state;
        bool keepNormal;
        char picture;
        ColorRef text;
    };
    constexpr Case cases[] = {
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
    for (const Case& test : cases) {
        SCOPED_TRACE(test.state);
        button.SetKeepNormalWhenFocused(test.keepNormal);
        const auto surface = desktop.GetGraphics().CreateSurface(Display::screen);
        button.DrawItem(surface->GetCanvas(), ItemState(test.state));
        const Bitmap& picture = surface->Picture();
        // The picture fills the whole button, and nothing beside it.
        EXPECT_EQ(LetterOf(picture.GetPixel({place.x, place.y})), test.picture);
        EXPECT_EQ(LetterOf(picture.GetPixel({place.Right() - 1, place.Bottom() - 1})), test.picture);
        EXPECT_EQ(picture.GetPixel({place.Right(), place.y}), 0u);
        for (const ColorRef color : {normalText, pressedText, ColorRef{0x808080}})
            EXPECT_EQ(HasColor(picture, color), color == test.text) << color;
    }
}

TEST_F(SkinButton, AttachStopsAtTheFirstPictureThatIsMissing) {
    struct Case {
        const char* pictures[3];
        bool attached;
        char drawn;  // a plain button is none of the pictures
    };
    const Case cases[] = {
        {{"normal", "pressed", "missing"}, false, '?'},   {{"normal", "missing", "disabled"}, false, '?'},
        {{"missing", "pressed", "disabled"}, false, '?'}, {{"normal", "pressed", "pressed"}, true, 'r'},
        {{"normal", "pressed", "disabled"}, true, 'r'},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(Attach(test.pictures[0], test.pictures[1], test.pictures[2]), test.attached);
        EXPECT_EQ(Button().IsOwnerDrawn(), test.attached);
        Button().Invalidate();
        Settle();
        EXPECT_EQ(Look(), test.drawn);
    }
}

TEST_F(SkinButton, LooksPressedWhileTheFingerIsOnItAndPlainAfterwards) {
    ASSERT_TRUE(Attach("normal", "pressed", "disabled"));
    const Point on = Middle(place);
    Down(on);
    EXPECT_EQ(Look(), 'g');
    Move({0, 0});
    EXPECT_EQ(Look(), 'r');
    Move(on);
    EXPECT_EQ(Look(), 'g');
    Up(on);
    EXPECT_EQ(Look(), 'r');
    Button().EnableWindow(false);
    Down(on);
    EXPECT_EQ(Look(), 'b');
}

}  // namespace
}  // namespace varkel::test
