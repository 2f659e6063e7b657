// The fonts of the screen, the same on every machine.
#pragma once

#include <map>
#include <pango/pango.h>

#include "platform/canvas.h"
#include "platform/linux/cairo_handles.h"

namespace varkel {

// A LogFont as Pango takes it.
struct PangoFace {
    PangoFontHandle description;
    int lineHeight = 0;  // pixels from one line to the next
    int ascent = 0;      // pixels from the top of a line to its base line
};

// Whatever face is asked for, it is DejaVu Sans, and Droid Sans Fallback for what that lacks. Neither the
// user's font settings nor the environment has a say. Dialog thread.
class PangoFonts {
  public:
    // Loads the fonts' directory.
    PangoFonts();

    PangoContext* Context() const { return m_context.get(); }
    // Valid until the next call.
    const PangoFace& Face(const LogFont& font);

    static constexpr int defaultHeight = 22;
    static constexpr int largestHeight = 480;

  private:
    struct Looks {
        int height = 0;
        int weight = 0;
        auto operator<=>(const Looks&) const = default;
    };

    PangoFace MakeFace(const Looks& looks) const;

    GObjectHandle<PangoFontMap> m_map;
    GObjectHandle<PangoContext> m_context;
    std::map<Looks, PangoFace> m_faces;
    static constexpr std::size_t faceLimit = 64;
};

}  // namespace varkel
