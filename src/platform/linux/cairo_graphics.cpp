#include "platform/linux/cairo_graphics.h"

#include <utility>

#include "platform/linux/bmp_file.h"
#include "platform/linux/cairo_canvas.h"
#include "platform/text.h"

namespace varkel {

namespace {

class CairoSurface final : public Surface {
  public:
    CairoSurface(std::unique_ptr<CairoBitmap> picture, PangoText& text)
        : m_picture(std::move(picture)), m_canvas(*m_picture, text) {}

    Canvas& GetCanvas() override { return m_canvas; }
    const Bitmap& Picture() const override { return *m_picture; }

  private:
    const std::unique_ptr<CairoBitmap> m_picture;
    CairoCanvas m_canvas;
};

// Device paths may begin with a backslash and do not tell cases apart.
std::string Key(std::string_view path) {
    if (path.starts_with('\\')) path.remove_prefix(1);
    return LowerAscii(path);
}

}  // namespace

CairoGraphics::CairoGraphics(UnitFiles& files) : m_files(files) {}

std::shared_ptr<const Bitmap> CairoGraphics::LoadBitmap(std::string_view path) {
    std::string key = Key(path);
    const auto found = m_loaded.find(key);
    if (found != m_loaded.end()) {
        if (auto loaded = found->second.lock()) return loaded;
    }
    std::erase_if(m_loaded, [](const auto& entry) { return entry.second.expired(); });
    const auto file = m_files.ReadWhole(path, BmpPicture::largestFile);
    const auto picture = file ? ReadBmp(*file) : std::nullopt;
    std::shared_ptr<const Bitmap> bitmap = picture ? CairoBitmap::Create(*picture) : nullptr;
    if (bitmap) m_loaded.emplace(std::move(key), bitmap);
    return bitmap;
}

std::unique_ptr<Surface> CairoGraphics::CreateSurface(Size size) {
    auto picture = CairoBitmap::Create(size);
    if (!picture) return nullptr;
    return std::make_unique<CairoSurface>(std::move(picture), m_text);
}

Size CairoGraphics::MeasureText(std::string_view text, const LogFont& font, int width) {
    return m_text.Measure(text, font, width);
}

std::size_t CairoGraphics::TextPosition(std::string_view text, const LogFont& font, int x) {
    return m_text.Position(text, font, x);
}

int CairoGraphics::CaretPlace(std::string_view text, const LogFont& font, std::size_t position) {
    return m_text.CaretPlace(text, font, position);
}

}  // namespace varkel
