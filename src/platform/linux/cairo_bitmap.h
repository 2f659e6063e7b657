// A picture as a cairo surface in memory.
#pragma once

#include <optional>

#include "platform/canvas.h"
#include "platform/linux/bmp_file.h"
#include "platform/linux/cairo_handles.h"

namespace varkel {

// Every Bitmap that a canvas of this backend meets is one of these. Dialog thread.
class CairoBitmap final : public Bitmap {
  public:
    // Black. Null when there is no memory for it.
    static std::unique_ptr<CairoBitmap> Create(Size size);
    static std::unique_ptr<CairoBitmap> Create(const BmpPicture& picture);

    Size GetSize() const override;
    ColorRef GetPixel(Point at) const override;

    cairo_surface_t* Pixels() const { return m_pixels.get(); }
    // The picture in which all pixels of one colour are transparent: made once, until the picture or the
    // colour changes. Null when there is no memory for it.
    cairo_surface_t* Keyed(ColorRef key) const;
    // To be called after drawing on the pixels.
    void Changed() { m_key.reset(); }

  private:
    explicit CairoBitmap(CairoSurfaceHandle pixels);

    const CairoSurfaceHandle m_pixels;
    mutable std::optional<ColorRef> m_key;
    mutable CairoSurfaceHandle m_keyed;
};

}  // namespace varkel
