// Pictures and texts through cairo and Pango.
#pragma once

#include <string>
#include <unordered_map>

#include "platform/linux/cairo_bitmap.h"
#include "platform/linux/pango_text.h"
#include "platform/unit_files.h"

namespace varkel {

// A picture that somebody holds is loaded once. Dialog thread.
class CairoGraphics final : public Graphics {
  public:
    // Everything that it makes must be gone before it.
    explicit CairoGraphics(UnitFiles& files);

    std::shared_ptr<const Bitmap> LoadBitmap(std::string_view path) override;
    std::unique_ptr<Surface> CreateSurface(Size size) override;
    Size MeasureText(std::string_view text, const LogFont& font, int width) override;
    std::size_t TextPosition(std::string_view text, const LogFont& font, int x) override;
    int CaretPlace(std::string_view text, const LogFont& font, std::size_t position) override;

    PangoText& Text() { return m_text; }

  private:
    UnitFiles& m_files;
    PangoText m_text;
    // By device path; what nobody holds any more is left out with the next picture that is loaded.
    std::unordered_map<std::string, std::weak_ptr<const Bitmap>> m_loaded;
};

}  // namespace varkel
