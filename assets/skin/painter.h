// A picture while it is drawn: shapes, icons, and the .bmp file in the end.
#pragma once

#include <cairo.h>
#include <string>

#include "assets/skin/icon_set.h"
#include "assets/skin/palette.h"
#include "platform/geometry.h"

namespace varkel::skin {

struct Edge {
    Color color;
    double width = 1.5;  // pixels, inside the shape
};

class Painter {
  public:
    Painter(Size size, IconSet& icons);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    void Fill(const Rect& rect, Color color);
    void RoundRect(const Rect& rect, double radius, Color face);
    void RoundRect(const Rect& rect, double radius, Color face, const Edge& edge);
    void Disc(double x, double y, double radius, Color face);
    void Ring(double x, double y, double radius, const Edge& edge);
    void Line(double x1, double y1, double x2, double y2, const Edge& pen);
    void Icon(const std::string& name, const IconBox& box, const IconColors& colors);

    // The picture as the bytes of a .bmp file of 24 bits. What is drawn lies on `ground`; where nothing is
    // drawn at all the picture is of the colour `nothing`.
    std::string Bmp(Color ground, Color nothing) const;

  private:
    void FillPath(Color color);

    const Size m_size;
    IconSet& m_icons;
    cairo_surface_t* const m_surface;
    cairo_t* const m_cairo;
};

}  // namespace varkel::skin
