// What is drawn with, and what is drawn on. Everything here belongs to the dialog thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/geometry.h"

namespace varkel {

// A colour as red + green x 256 + blue x 65536.
using ColorRef = std::uint32_t;

constexpr ColorRef Rgb(unsigned red, unsigned green, unsigned blue) {
    return red | green << 8 | blue << 16;
}

// LOGFONT, as far as it is used.
struct LogFont {
    std::string face;  // one that the system lacks is replaced
    // Pixels: above 0 of a line of text, below 0 of its letters alone, without the room between lines; 0 =
    // the default height.
    int height = 0;
    int weight = 400;  // 400 regular, 700 bold

    bool operator==(const LogFont&) const = default;
};

// How DrawText lays a text out; the numbers are those of DT_...
enum class TextFormat : unsigned {
    Left = 0,
    Center = 1,
    Right = 2,
    VCenter = 4,
    WordBreak = 16,
    SingleLine = 32,
    EndEllipsis = 0x8000,  // what does not fit ends in an ellipsis
};
constexpr TextFormat operator|(TextFormat a, TextFormat b) {
    return static_cast<TextFormat>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool Has(TextFormat format, TextFormat flag) {
    return (static_cast<unsigned>(format) & static_cast<unsigned>(flag)) != 0;
}

// A picture that was loaded or drawn before.
class Bitmap {
  public:
    virtual ~Bitmap() = default;
    virtual Size GetSize() const = 0;
    // 0 outside.
    virtual ColorRef GetPixel(Point at) const = 0;
};

// Drawing outside a canvas or its clip does nothing.
class Canvas {
  public:
    virtual ~Canvas() = default;

    // Nested clips share what they have in common.
    virtual void PushClip(const Rect& clip) = 0;
    virtual void PopClip() = 0;

    virtual void FillRect(const Rect& rect, ColorRef color) = 0;
    // A rectangle with rounded corners: its area, and its edge inside the area; an edge of 0 pixels is none.
    virtual void RoundRect(const Rect& rect, int radius, ColorRef fill, ColorRef edge = 0,
                           double edgeWidth = 0) = 0;

    // The picture in its own size, with its upper left corner at `at`.
    virtual void BitBlt(const Bitmap& picture, Point at) = 0;
    // A part of a picture.
    virtual void BitBlt(const Bitmap& picture, const Rect& part, Point at) = 0;
    // The whole picture, fitted to a rectangle.
    virtual void StretchBlt(const Bitmap& picture, const Rect& to) = 0;
    // As StretchBlt, without the pixels of the colour `key`.
    virtual void TransparentImage(const Bitmap& picture, const Rect& to, ColorRef key) = 0;

    // UTF-8; bytes that are none are shown as U+FFFD. Right-to-left scripts are ordered here. Left and Right
    // are the sides of the screen. Without SingleLine, line ends begin new lines and VCenter centres the
    // block of lines, if it fits. Clipped to the rectangle.
    virtual void DrawText(std::string_view text, const Rect& rect, TextFormat format, const LogFont& font,
                          ColorRef color) = 0;
};

// A canvas in memory and the picture that is drawn on it.
class Surface {
  public:
    virtual ~Surface() = default;
    virtual Canvas& GetCanvas() = 0;
    virtual const Bitmap& Picture() const = 0;
};

// Makes pictures and measures texts.
class Graphics {
  public:
    virtual ~Graphics() = default;

    // SHLoadDIBitmap: the .bmp file of that device path; null when it is missing, damaged or larger than the
    // screen by far.
    virtual std::shared_ptr<const Bitmap> LoadBitmap(std::string_view path) = 0;
    // Black at first. Null when there is no memory for it.
    virtual std::unique_ptr<Surface> CreateSurface(Size size) = 0;
    // The room that the text takes, in lines of at most `width` pixels; 0 = in one line.
    virtual Size MeasureText(std::string_view text, const LogFont& font, int width = 0) = 0;
    // How many bytes of the text, a whole number of characters, stand left of `x` in a line that begins at 0,
    // in reading order.
    virtual std::size_t TextPosition(std::string_view text, const LogFont& font, int x) = 0;
    // The place of the caret before byte `position` of a line that begins at 0.
    virtual int CaretPlace(std::string_view text, const LogFont& font, std::size_t position) = 0;
};

}  // namespace varkel
