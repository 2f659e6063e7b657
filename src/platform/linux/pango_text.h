// Texts on the screen: shaped, ordered, broken into lines, measured and drawn.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/linux/pango_fonts.h"

namespace varkel {

// Keeps the layouts of the last texts, so that a repaint shapes nothing. Of a text the first 4096 bytes are
// taken. Dialog thread.
class PangoText {
  public:
    // As of Graphics.
    Size Measure(std::string_view text, const LogFont& font, int width);
    std::size_t Position(std::string_view text, const LogFont& font, int x);
    int CaretPlace(std::string_view text, const LogFont& font, std::size_t position);

    // In the colour and the clip that are set.
    void Draw(cairo_t* cairo, std::string_view text, const Rect& rect, TextFormat format,
              const LogFont& font);

    static constexpr std::size_t longestText = 4096;
    static constexpr std::size_t layoutLimit = 256;

  private:
    // How a text is broken into lines.
    struct Breaks {
        bool singleLine = false;
        int width = 0;  // pixels; 0 = as long as it is
        int lines = 0;  // with a width: what does not fit into so many ends in an ellipsis; 0 = no limit
        auto operator<=>(const Breaks&) const = default;
    };
    struct Layout {
        GObjectHandle<PangoLayout> lines;
        int lineHeight = 0;
        int ascent = 0;
        std::uint64_t lastUse = 0;
    };
    using Key = std::tuple<std::string, int, int, Breaks>;  // text, height and weight of the font, breaks

    // Valid until the next call.
    const Layout& LayoutOf(std::string_view text, const LogFont& font, const Breaks& breaks);
    Layout MakeLayout(std::string_view text, const LogFont& font, const Breaks& breaks);
    void ForgetOldest();

    PangoFonts m_fonts;
    std::map<Key, Layout> m_layouts;
    std::uint64_t m_uses = 0;
};

}  // namespace varkel
