// What a dialog is made of, as constant tables: one row a control, in the columns that its kind needs.
//
// Rectangles count from the dialog's upper left corner. A picture is a file name without ".bmp", in the
// dialog's directory unless it begins with a backslash. A caption that begins with "IDS_" is a key of the
// language library's section "GPRS"; any other is shown as it stands.
#pragma once

#include <span>
#include <string_view>

#include "platform/canvas.h"
#include "platform/runtime.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

// IDOK and IDCANCEL; the ids of the buttons that give these results, too.
enum class DialogResult : int { None = 0, Ok = 1, Cancel = 2 };
inline constexpr int idOk = 1;
inline constexpr int idCancel = 2;
inline constexpr int noId = -1;

// The picture of a disabled button, after its name: both suffixes occur, and a button without one shows the
// pressed picture.
enum class DisabledPicture { Sel, Disable, Dis };

struct ButtonSpec {
    int id = 0;
    Rect rect{};
    std::string_view picture{};  // "Dial" stands for "Dial.bmp", "DialSel.bmp" and the disabled one
    DisabledPicture disabled = DisabledPicture::Sel;
    std::string_view caption{};
    TextRole role = TextRole::Button;
    int textOffset = 0;
};

// How a text stands on the dialog. A static control has a white ground on dialogs with edit fields; a drawn
// text stands on the picture.
enum class TextGround { Drawn, Static };

// In a language that is read from the right, as far from the other side of `within`.
constexpr Rect Mirrored(const Rect& rect, const Rect& within) {
    return {within.x + within.Right() - rect.Right(), rect.y, rect.width, rect.height};
}

struct TextSpec {
    int id = 0;
    Rect rect{};
    std::string_view caption{};
    TextRole role = TextRole::Body;
    TextFormat format = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
    TextGround ground = TextGround::Drawn;
    Rect mirroredIn{};  // changes sides there; empty: it stays where it is
};

enum class EditInput { Text, Digits, PhoneNumber };

struct EditSpec {
    int id = 0;
    Rect rect{};
    EditInput input = EditInput::Text;
    std::size_t maxUnits = 40;  // UTF-16 units
    bool password = false;
    bool multiLine = false;
    bool readOnly = false;
    bool softKeyboard = true;  // raised when the field gets the focus
    int height = 32;           // of the font
    std::string_view hint{};   // what to type here, shown while the field is empty
};

struct ListSpec {
    int id = 0;
    Rect rect{};
    int rowHeight = 72;
};

// A mark with its text beside it, or a picture that fills the item, with the text in its middle.
enum class RadioLook { Mark, Tab };

struct RadioSpec {
    int id = 0;
    Rect rect{};  // filled with items from left to right, then from top to bottom
    Size item{};
    std::string_view picture{};  // "Radio" stands for "Radio.bmp" and "RadioSel.bmp"
    std::span<const std::string_view> captions{};
    RadioLook look = RadioLook::Mark;
    TextRole role = TextRole::Body;
};

struct CheckSpec {
    int id = 0;
    Rect rect{};
    std::string_view picture{};  // "Check" stands for "Check.bmp" and "CheckSel.bmp"
    std::string_view caption{};
    TextRole role = TextRole::Body;
    Rect mirroredIn{};  // as that of a text
};

// A control that only keeps a place, as the one that a scroll bar is created from.
struct PlaceSpec {
    int id = 0;
    Rect rect{};
};

// Who gets what is touched and typed while the dialog is the topmost one.
enum class DialogScope {
    Everything,  // nothing below is reached
    OwnPlace,    // only what touches it; keys go to the one below
};

// A dialog opens on top of its layer.
enum class DialogLayer { Screens, AboveAll };

struct DialogSpec {
    Rect rect{0, 0, 800, 480};
    std::string_view directory{};  // of the pictures
    std::string_view background{};
    std::string_view windowText{};  // by which other programs find it; empty: it is no window of theirs

    std::span<const TextSpec> texts{};
    std::span<const ButtonSpec> buttons{};
    std::span<const EditSpec> edits{};
    std::span<const ListSpec> lists{};
    std::span<const RadioSpec> radios{};
    std::span<const CheckSpec> checks{};
    std::span<const PlaceSpec> places{};

    int returnClicks = idOk;      // the button that the Return key stands for
    int escapeClicks = idCancel;  // the one that leaves the dialog
    bool animated = false;        // opens and closes like a curtain, where the unit wants that
    DialogScope scope = DialogScope::Everything;
    DialogLayer layer = DialogLayer::Screens;
};

}  // namespace varkel
