#include "platform/linux/pango_fonts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <utility>

namespace varkel {

namespace {

// Three files, found through the system's cache. The fallback font has no bold letters; they are made.
constexpr const char* fontsConf = R"(<?xml version="1.0"?>
<fontconfig>
  <dir>/usr/share/fonts/truetype/dejavu</dir>
  <dir>/usr/share/fonts/truetype/droid</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <selectfont>
    <rejectfont><glob>*</glob></rejectfont>
    <acceptfont>
      <glob>*/DejaVuSans.ttf</glob>
      <glob>*/DejaVuSans-Bold.ttf</glob>
      <glob>*/DroidSansFallbackFull.ttf</glob>
    </acceptfont>
  </selectfont>
  <match target="pattern">
    <edit name="family" mode="assign" binding="strong">
      <string>DejaVu Sans</string>
      <string>Droid Sans Fallback</string>
    </edit>
  </match>
  <match target="font">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="hinting" mode="assign"><bool>true</bool></edit>
    <edit name="hintstyle" mode="assign"><const>hintslight</const></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
  </match>
  <match target="font">
    <test name="weight" compare="less_eq"><const>medium</const></test>
    <test target="pattern" name="weight" compare="more_eq"><const>bold</const></test>
    <edit name="embolden" mode="assign"><bool>true</bool></edit>
  </match>
</fontconfig>
)";

// Made current before Pango asks: it would load the user's settings first otherwise.
void UseOwnFonts() {
    FcConfig* config = FcConfigCreate();
    const auto* const text = reinterpret_cast<const FcChar8*>(fontsConf);
    const bool loaded = FcConfigParseAndLoadFromMemory(config, text, FcTrue) == FcTrue &&
                        FcConfigBuildFonts(config) == FcTrue;
    const FcFontSet* const fonts = loaded ? FcConfigGetFonts(config, FcSetSystem) : nullptr;
    if (!fonts || fonts->nfont == 0) {
        // A system that has them elsewhere: any letters are better than none.
        FcConfigDestroy(config);
        config = FcInitLoadConfigAndFonts();
    }
    FcConfigSetCurrent(config);
    FcConfigDestroy(config);
}

GObjectHandle<PangoContext> MakeContext(PangoFontMap* map) {
    GObjectHandle<PangoContext> context(pango_font_map_create_context(map));
    const CairoFontOptions options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context.get(), options.get());
    pango_context_set_round_glyph_positions(context.get(), TRUE);
    // Not the locale's: the unit's language is no setting of the system.
    pango_context_set_language(context.get(), pango_language_from_string("en"));
    pango_context_set_base_dir(context.get(), PANGO_DIRECTION_WEAK_LTR);
    return context;
}

}  // namespace

PangoFonts::PangoFonts() {
    UseOwnFonts();
    m_map.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
    m_context = MakeContext(m_map.get());
}

const PangoFace& PangoFonts::Face(const LogFont& font) {
    const Looks looks{
        font.height == 0 ? defaultHeight : std::clamp(font.height, -largestHeight, largestHeight),
        font.weight == 0 ? 400 : std::clamp(font.weight, 100, 1000)};
    const auto found = m_faces.find(looks);
    if (found != m_faces.end()) return found->second;
    if (m_faces.size() >= faceLimit) m_faces.clear();
    return m_faces.emplace(looks, MakeFace(looks)).first->second;
}

PangoFace PangoFonts::MakeFace(const Looks& looks) const {
    PangoFace face;
    face.description.reset(pango_font_description_new());
    pango_font_description_set_family_static(face.description.get(), "DejaVu Sans");
    pango_font_description_set_weight(face.description.get(), static_cast<PangoWeight>(looks.weight));
    // Measured large, where rounding to pixels does not show.
    constexpr double large = 1000.0 * PANGO_SCALE;
    pango_font_description_set_absolute_size(face.description.get(), large);
    double ascent = 0.93;
    double descent = 0.24;
    const GObjectHandle<PangoFont> font(
        pango_font_map_load_font(m_map.get(), Context(), face.description.get()));
    if (font) {
        PangoFontMetrics* const metrics =
            pango_font_get_metrics(font.get(), pango_context_get_language(Context()));
        ascent = pango_font_metrics_get_ascent(metrics) / large;
        descent = pango_font_metrics_get_descent(metrics) / large;
        pango_font_metrics_unref(metrics);
    }
    const double cell = ascent + descent;
    const double em = looks.height > 0 ? looks.height / cell : -looks.height;
    pango_font_description_set_absolute_size(face.description.get(), std::round(em * PANGO_SCALE));
    face.lineHeight = looks.height > 0 ? looks.height : static_cast<int>(std::ceil(em * cell));
    face.ascent = static_cast<int>(std::lround(em * ascent));
    return face;
}

}  // namespace varkel
