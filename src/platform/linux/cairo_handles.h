// Who owns a cairo or Pango object.
#pragma once

#include <cairo.h>
#include <glib-object.h>
#include <memory>
#include <pango/pango.h>

namespace varkel {

struct CairoRelease {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};
using CairoSurfaceHandle = std::unique_ptr<cairo_surface_t, CairoRelease>;
using CairoHandle = std::unique_ptr<cairo_t, CairoRelease>;
using CairoFontOptions = std::unique_ptr<cairo_font_options_t, CairoRelease>;

struct PangoFontRelease {
    void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
};
using PangoFontHandle = std::unique_ptr<PangoFontDescription, PangoFontRelease>;

struct GObjectRelease {
    void operator()(void* object) const { g_object_unref(object); }
};
template <typename Object>
using GObjectHandle = std::unique_ptr<Object, GObjectRelease>;

}  // namespace varkel
