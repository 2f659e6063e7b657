#include "assets/skin/painter.h"

#include <cstdint>
#include <numbers>

namespace varkel::skin {

namespace {

constexpr double quarter = std::numbers::pi / 2;

void SetColor(cairo_t* cairo, Color color) {
    cairo_set_source_rgb(cairo, color.red / 255.0, color.green / 255.0, color.blue / 255.0);
}

void RoundPath(cairo_t* cairo, const Rect& rect, double inset, double radius) {
    const double left = rect.x + inset, top = rect.y + inset;
    const double right = rect.Right() - inset, bottom = rect.Bottom() - inset;
    const double r = radius - inset;
    cairo_new_path(cairo);
    cairo_arc(cairo, right - r, top + r, r, -quarter, 0);
    cairo_arc(cairo, right - r, bottom - r, r, 0, quarter);
    cairo_arc(cairo, left + r, bottom - r, r, quarter, 2 * quarter);
    cairo_arc(cairo, left + r, top + r, r, 2 * quarter, 3 * quarter);
    cairo_close_path(cairo);
}

void Append(std::string& bytes, std::uint32_t value, int octets) {
    for (int i = 0; i < octets; ++i)
        bytes += static_cast<char>(value >> 8 * i);
}

// A premultiplied part of a pixel, of which `alpha` is covered, on its ground.
std::uint8_t Over(std::uint32_t part, std::uint32_t alpha, std::uint8_t ground) {
    return static_cast<std::uint8_t>(part + (ground * (255 - alpha) + 127) / 255);
}

}  // namespace

Painter::Painter(Size size, IconSet& icons)
    : m_size(size),
      m_icons(icons),
      m_surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.width, size.height)),
      m_cairo(cairo_create(m_surface)) {}

Painter::~Painter() {
    cairo_destroy(m_cairo);
    cairo_surface_destroy(m_surface);
}

void Painter::FillPath(Color color) {
    SetColor(m_cairo, color);
    cairo_fill(m_cairo);
}

void Painter::Fill(const Rect& rect, Color color) {
    cairo_rectangle(m_cairo, rect.x, rect.y, rect.width, rect.height);
    FillPath(color);
}

void Painter::RoundRect(const Rect& rect, double radius, Color face) {
    RoundPath(m_cairo, rect, 0, radius);
    FillPath(face);
}

void Painter::RoundRect(const Rect& rect, double radius, Color face, const Edge& edge) {
    // The face ends below the middle of the edge, so that nothing of it shines through outside.
    RoundPath(m_cairo, rect, edge.width / 2, radius);
    FillPath(face);
    RoundPath(m_cairo, rect, edge.width / 2, radius);
    SetColor(m_cairo, edge.color);
    cairo_set_line_width(m_cairo, edge.width);
    cairo_stroke(m_cairo);
}

void Painter::Disc(double x, double y, double radius, Color face) {
    cairo_new_path(m_cairo);
    cairo_arc(m_cairo, x, y, radius, 0, 4 * quarter);
    FillPath(face);
}

void Painter::Ring(double x, double y, double radius, const Edge& edge) {
    cairo_new_path(m_cairo);
    cairo_arc(m_cairo, x, y, radius - edge.width / 2, 0, 4 * quarter);
    SetColor(m_cairo, edge.color);
    cairo_set_line_width(m_cairo, edge.width);
    cairo_stroke(m_cairo);
}

void Painter::Line(double x1, double y1, double x2, double y2, const Edge& pen) {
    cairo_move_to(m_cairo, x1, y1);
    cairo_line_to(m_cairo, x2, y2);
    SetColor(m_cairo, pen.color);
    cairo_set_line_width(m_cairo, pen.width);
    cairo_set_line_cap(m_cairo, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(m_cairo);
}

void Painter::Icon(const std::string& name, const IconBox& box, const IconColors& colors) {
    cairo_save(m_cairo);
    m_icons.Draw(m_cairo, name, box, colors);
    cairo_restore(m_cairo);
}

std::string Painter::Bmp(Color ground, Color nothing) const {
    constexpr std::uint32_t headers = 54;
    const int padding = (4 - m_size.width * 3 % 4) % 4;
    const auto body = static_cast<std::uint32_t>((m_size.width * 3 + padding) * m_size.height);
    std::string file = "BM";
    file.reserve(headers + body);
    Append(file, headers + body, 4);
    Append(file, 0, 4);
    Append(file, headers, 4);
    Append(file, 40, 4);
    Append(file, static_cast<std::uint32_t>(m_size.width), 4);
    Append(file, static_cast<std::uint32_t>(m_size.height), 4);
    Append(file, 1, 2);
    Append(file, 24, 2);
    Append(file, 0, 4);  // not compressed
    Append(file, body, 4);
    file.append(16, '\0');  // no resolution, no table of colours

    cairo_surface_flush(m_surface);
    const unsigned char* const data = cairo_image_surface_get_data(m_surface);
    const int stride = cairo_image_surface_get_stride(m_surface);
    for (int y = m_size.height - 1; y >= 0; --y) {
        const auto* const row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (int x = 0; x < m_size.width; ++x) {
            const std::uint32_t pixel = row[x];
            const std::uint32_t alpha = pixel >> 24;
            const Color under = alpha == 0 ? nothing : ground;
            file += static_cast<char>(Over(pixel & 0xFF, alpha, under.blue));
            file += static_cast<char>(Over(pixel >> 8 & 0xFF, alpha, under.green));
            file += static_cast<char>(Over(pixel >> 16 & 0xFF, alpha, under.red));
        }
        file.append(static_cast<std::size_t>(padding), '\0');
    }
    return file;
}

}  // namespace varkel::skin
