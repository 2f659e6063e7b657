#include "platform/linux/cairo_canvas.h"

#include <algorithm>
#include <numbers>

namespace varkel {

namespace {

Rect Whole(Size size) {
    return {0, 0, size.width, size.height};
}

void AddRectangle(cairo_t* cairo, const Rect& rect) {
    cairo_rectangle(cairo, rect.x, rect.y, rect.width, rect.height);
}

// `inset` pixels inside the rectangle.
void AddRoundRectangle(cairo_t* cairo, const Rect& rect, double radius, double inset) {
    const double left = rect.x + inset;
    const double top = rect.y + inset;
    const double right = rect.Right() - inset;
    const double bottom = rect.Bottom() - inset;
    const double curve = std::clamp(radius - inset, 0.0, std::min(right - left, bottom - top) / 2);
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, right - curve, top + curve, curve, -quarter, 0);
    cairo_arc(cairo, right - curve, bottom - curve, curve, 0, quarter);
    cairo_arc(cairo, left + curve, bottom - curve, curve, quarter, 2 * quarter);
    cairo_arc(cairo, left + curve, top + curve, curve, 2 * quarter, 3 * quarter);
    cairo_close_path(cairo);
}

}  // namespace

CairoCanvas::CairoCanvas(CairoBitmap& picture, PangoText& text)
    : m_picture(picture), m_text(text), m_cairo(cairo_create(picture.Pixels())) {}

void CairoCanvas::PushClip(const Rect& clip) {
    m_clips.push_back(Intersection(clip, m_clips.empty() ? Whole(m_picture.GetSize()) : m_clips.back()));
    ApplyClip();
}

void CairoCanvas::PopClip() {
    if (!m_clips.empty()) m_clips.pop_back();
    ApplyClip();
}

void CairoCanvas::PopAllClips() {
    m_clips.clear();
    ApplyClip();
}

void CairoCanvas::ApplyClip() {
    cairo_reset_clip(m_cairo.get());
    if (m_clips.empty()) return;
    AddRectangle(m_cairo.get(), m_clips.back());
    cairo_clip(m_cairo.get());
}

void CairoCanvas::SetColor(ColorRef color) {
    const auto part = [color](int shift) { return (color >> shift & 0xFF) / 255.0; };
    cairo_set_source_rgb(m_cairo.get(), part(0), part(8), part(16));
}

void CairoCanvas::FillRect(const Rect& rect, ColorRef color) {
    if (rect.Empty()) return;
    m_picture.Changed();
    SetColor(color);
    AddRectangle(m_cairo.get(), rect);
    cairo_fill(m_cairo.get());
}

void CairoCanvas::RoundRect(const Rect& rect, int radius, ColorRef fill, ColorRef edge, double edgeWidth) {
    if (rect.Empty()) return;
    m_picture.Changed();
    const double width = std::clamp(edgeWidth, 0.0, std::min(rect.width, rect.height) / 2.0);
    // The area ends below the middle of the edge, so that none of it shines through the edge's rim.
    AddRoundRectangle(m_cairo.get(), rect, radius, width / 2);
    SetColor(fill);
    if (width == 0) return cairo_fill(m_cairo.get());
    cairo_fill_preserve(m_cairo.get());
    SetColor(edge);
    cairo_set_line_width(m_cairo.get(), width);
    cairo_stroke(m_cairo.get());
}

void CairoCanvas::BitBlt(const Bitmap& picture, Point at) {
    BitBlt(picture, Whole(picture.GetSize()), at);
}

void CairoCanvas::BitBlt(const Bitmap& picture, const Rect& part, Point at) {
    const auto* const source = dynamic_cast<const CairoBitmap*>(&picture);
    const Rect taken = Intersection(part, Whole(picture.GetSize()));
    if (!source || taken.Empty()) return;
    m_picture.Changed();
    const int dx = at.x - part.x;
    const int dy = at.y - part.y;
    cairo_set_source_surface(m_cairo.get(), source->Pixels(), dx, dy);
    cairo_pattern_set_filter(cairo_get_source(m_cairo.get()), CAIRO_FILTER_NEAREST);
    AddRectangle(m_cairo.get(), taken.Moved(dx, dy));
    cairo_fill(m_cairo.get());
}

void CairoCanvas::StretchBlt(const Bitmap& picture, const Rect& to) {
    if (const auto* const source = dynamic_cast<const CairoBitmap*>(&picture))
        Stretch(source->Pixels(), source->GetSize(), to);
}

void CairoCanvas::TransparentImage(const Bitmap& picture, const Rect& to, ColorRef key) {
    const auto* const source = dynamic_cast<const CairoBitmap*>(&picture);
    if (cairo_surface_t* const keyed = source ? source->Keyed(key) : nullptr)
        Stretch(keyed, source->GetSize(), to);
}

void CairoCanvas::Stretch(cairo_surface_t* pixels, Size size, const Rect& to) {
    if (to.Empty() || size.width == 0 || size.height == 0) return;
    m_picture.Changed();
    cairo_t* const cairo = m_cairo.get();
    cairo_save(cairo);
    AddRectangle(cairo, to);
    cairo_clip(cairo);
    cairo_translate(cairo, to.x, to.y);
    const bool scaled = Size{to.width, to.height} != size;
    if (scaled) {
        cairo_scale(cairo, static_cast<double>(to.width) / size.width,
                    static_cast<double>(to.height) / size.height);
    }
    cairo_set_source_surface(cairo, pixels, 0, 0);
    cairo_pattern_t* const pattern = cairo_get_source(cairo);
    cairo_pattern_set_filter(pattern, scaled ? CAIRO_FILTER_GOOD : CAIRO_FILTER_NEAREST);
    // The border is not mixed with what lies beside the picture.
    cairo_pattern_set_extend(pattern, scaled ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE);
    cairo_paint(cairo);
    cairo_restore(cairo);
}

void CairoCanvas::DrawText(std::string_view text, const Rect& rect, TextFormat format, const LogFont& font,
                           ColorRef color) {
    if (text.empty() || rect.Empty()) return;
    m_picture.Changed();
    cairo_save(m_cairo.get());
    AddRectangle(m_cairo.get(), rect);
    cairo_clip(m_cairo.get());
    SetColor(color);
    m_text.Draw(m_cairo.get(), text, rect, format, font);
    cairo_restore(m_cairo.get());
}

}  // namespace varkel
