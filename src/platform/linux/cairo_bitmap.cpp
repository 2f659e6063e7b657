#include "platform/linux/cairo_bitmap.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

namespace varkel {

namespace {

// Cairo's pixels of 32 bits have no gap between rows, because each is a whole word.
std::span<std::uint32_t> PixelsOf(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const auto count = static_cast<std::size_t>(cairo_image_surface_get_width(surface)) *
                       static_cast<std::size_t>(cairo_image_surface_get_height(surface));
    return {reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface)), count};
}

CairoSurfaceHandle MakeSurface(cairo_format_t format, Size size) {
    CairoSurfaceHandle surface(cairo_image_surface_create(format, size.width, size.height));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return surface;
}

constexpr std::uint32_t colorBits = 0x00FFFFFF;

// A ColorRef has red below, a pixel has it above; the way back is the same.
constexpr std::uint32_t Swapped(std::uint32_t color) {
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

}  // namespace

CairoBitmap::CairoBitmap(CairoSurfaceHandle pixels) : m_pixels(std::move(pixels)) {}

std::unique_ptr<CairoBitmap> CairoBitmap::Create(Size size) {
    auto surface = MakeSurface(CAIRO_FORMAT_RGB24, size);
    if (!surface) return nullptr;
    return std::unique_ptr<CairoBitmap>(new CairoBitmap(std::move(surface)));
}

std::unique_ptr<CairoBitmap> CairoBitmap::Create(const BmpPicture& picture) {
    auto bitmap = Create(picture.size);
    if (!bitmap) return nullptr;
    std::copy(picture.pixels.begin(), picture.pixels.end(), PixelsOf(bitmap->Pixels()).begin());
    cairo_surface_mark_dirty(bitmap->Pixels());
    return bitmap;
}

Size CairoBitmap::GetSize() const {
    return {cairo_image_surface_get_width(Pixels()), cairo_image_surface_get_height(Pixels())};
}

ColorRef CairoBitmap::GetPixel(Point at) const {
    const Size size = GetSize();
    if (!Rect{0, 0, size.width, size.height}.Contains(at)) return 0;
    const std::size_t index = static_cast<std::size_t>(at.y) * static_cast<std::size_t>(size.width) +
                              static_cast<std::size_t>(at.x);
    return Swapped(PixelsOf(Pixels())[index]);
}

cairo_surface_t* CairoBitmap::Keyed(ColorRef key) const {
    if (m_key == key) return m_keyed.get();
    m_key.reset();
    m_keyed = MakeSurface(CAIRO_FORMAT_ARGB32, GetSize());
    if (!m_keyed) return nullptr;
    constexpr std::uint32_t opaque = 0xFF000000;
    const std::uint32_t hole = Swapped(key) & colorBits;
    std::ranges::transform(PixelsOf(Pixels()), PixelsOf(m_keyed.get()).begin(), [hole](std::uint32_t pixel) {
        return (pixel & colorBits) == hole ? 0 : pixel | opaque;
    });
    cairo_surface_mark_dirty(m_keyed.get());
    m_key = key;
    return m_keyed.get();
}

}  // namespace varkel
