// A canvas on a cairo surface.
#pragma once

#include <vector>

#include "platform/linux/cairo_bitmap.h"
#include "platform/linux/pango_text.h"

namespace varkel {

// Pictures of other backends are not drawn. Dialog thread.
class CairoCanvas final : public Canvas {
  public:
    // Both outlive it.
    CairoCanvas(CairoBitmap& picture, PangoText& text);

    void PushClip(const Rect& clip) override;
    void PopClip() override;
    // Takes back every PushClip.
    void PopAllClips();

    void FillRect(const Rect& rect, ColorRef color) override;
    void RoundRect(const Rect& rect, int radius, ColorRef fill, ColorRef edge, double edgeWidth) override;
    void BitBlt(const Bitmap& picture, Point at) override;
    void BitBlt(const Bitmap& picture, const Rect& part, Point at) override;
    void StretchBlt(const Bitmap& picture, const Rect& to) override;
    void TransparentImage(const Bitmap& picture, const Rect& to, ColorRef key) override;
    void DrawText(std::string_view text, const Rect& rect, TextFormat format, const LogFont& font,
                  ColorRef color) override;

  private:
    void ApplyClip();
    void SetColor(ColorRef color);
    void Stretch(cairo_surface_t* pixels, Size size, const Rect& to);

    CairoBitmap& m_picture;
    PangoText& m_text;
    const CairoHandle m_cairo;
    std::vector<Rect> m_clips;  // each lies within the one before it
};

}  // namespace varkel
