#include "platform/linux/pango_text.h"

#include <algorithm>
#include <pango/pangocairo.h>

#include "platform/text.h"

namespace varkel {

namespace {

// What Pango gets to see: it has a character for each character and each ill-formed byte of the text, so
// that a place in one can be found in the other.
std::string Presentable(std::string_view text, bool singleLine) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const std::string_view character = text.substr(0, FirstCharacterBytes(text));
        text.remove_prefix(character.size());
        const auto first = static_cast<unsigned char>(character[0]);
        const bool breaksLine = first == '\n' || first == '\r' || first == '\t';
        if (breaksLine && singleLine) {
            shown += ' ';
        } else if ((first < ' ' && !breaksLine) || first == 0x7F ||
                   (first >= 0x80 && character.size() == 1)) {
            shown += "\xEF\xBF\xBD";  // U+FFFD
        } else {
            shown += character;
        }
    }
    return shown;
}

std::size_t Characters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        text.remove_prefix(FirstCharacterBytes(text));
    return count;
}

std::size_t BytesOf(std::string_view text, std::size_t characters) {
    const std::size_t whole = text.size();
    for (; characters > 0 && !text.empty(); --characters)
        text.remove_prefix(FirstCharacterBytes(text));
    return whole - text.size();
}

int Pixels(int pangoUnits) {
    return PANGO_PIXELS_CEIL(pangoUnits);
}

int WidthOf(PangoLayoutLine* line) {
    PangoRectangle extents;
    pango_layout_line_get_extents(line, nullptr, &extents);
    return Pixels(extents.width);
}

}  // namespace

Size PangoText::Measure(std::string_view text, const LogFont& font, int width) {
    const Layout& layout = LayoutOf(text, font, {.singleLine = width == 0, .width = width});
    Size size{0, layout.lineHeight * pango_layout_get_line_count(layout.lines.get())};
    for (GSList* line = pango_layout_get_lines_readonly(layout.lines.get()); line; line = line->next)
        size.width = std::max(size.width, WidthOf(static_cast<PangoLayoutLine*>(line->data)));
    return size;
}

std::size_t PangoText::Position(std::string_view text, const LogFont& font, int x) {
    text = CutUtf8(text, longestText);
    const Layout& layout = LayoutOf(text, font, {.singleLine = true});
    int index = 0;
    int trailing = 0;
    pango_layout_xy_to_index(layout.lines.get(), x * PANGO_SCALE, 0, &index, &trailing);
    const std::string_view shown = pango_layout_get_text(layout.lines.get());
    const std::size_t before = Characters(shown.substr(0, static_cast<std::size_t>(index)));
    return BytesOf(text, before + static_cast<std::size_t>(trailing));
}

int PangoText::CaretPlace(std::string_view text, const LogFont& font, std::size_t position) {
    const Layout& layout = LayoutOf(text, font, {.singleLine = true});
    const std::string_view shown = pango_layout_get_text(layout.lines.get());
    const std::string_view before = CutUtf8(CutUtf8(text, longestText), position);
    const std::size_t index = BytesOf(shown, Characters(before));
    PangoRectangle caret;
    pango_layout_get_cursor_pos(layout.lines.get(), static_cast<int>(index), &caret, nullptr);
    return PANGO_PIXELS(caret.x);
}

void PangoText::Draw(cairo_t* cairo, std::string_view text, const Rect& rect, TextFormat format,
                     const LogFont& font) {
    Breaks breaks{.singleLine = Has(format, TextFormat::SingleLine)};
    const bool ellipsis = Has(format, TextFormat::EndEllipsis);
    if (ellipsis || (Has(format, TextFormat::WordBreak) && !breaks.singleLine)) breaks.width = rect.width;
    if (ellipsis)
        breaks.lines = breaks.singleLine ? 1 : std::max(1, rect.height / m_fonts.Face(font).lineHeight);

    const Layout& layout = LayoutOf(text, font, breaks);
    const int height = layout.lineHeight * pango_layout_get_line_count(layout.lines.get());
    int y = rect.y + layout.ascent;
    // A block that is too high shows its beginning; a line shows its middle.
    if (Has(format, TextFormat::VCenter) && (breaks.singleLine || height < rect.height))
        y += (rect.height - height) / 2;
    for (GSList* next = pango_layout_get_lines_readonly(layout.lines.get()); next; next = next->next) {
        auto* const line = static_cast<PangoLayoutLine*>(next->data);
        const int room = rect.width - WidthOf(line);
        const int indent = Has(format, TextFormat::Center)  ? room / 2
                           : Has(format, TextFormat::Right) ? room
                                                            : 0;
        cairo_move_to(cairo, rect.x + indent, y);
        pango_cairo_show_layout_line(cairo, line);
        y += layout.lineHeight;
        if (y - layout.ascent >= rect.Bottom()) break;
    }
}

const PangoText::Layout& PangoText::LayoutOf(std::string_view text, const LogFont& font,
                                             const Breaks& breaks) {
    Key key{CutUtf8(text, longestText), font.height, font.weight, breaks};
    auto found = m_layouts.find(key);
    if (found == m_layouts.end()) {
        if (m_layouts.size() >= layoutLimit) ForgetOldest();
        Layout layout = MakeLayout(std::get<std::string>(key), font, breaks);
        found = m_layouts.emplace(std::move(key), std::move(layout)).first;
    }
    found->second.lastUse = ++m_uses;
    return found->second;
}

PangoText::Layout PangoText::MakeLayout(std::string_view text, const LogFont& font, const Breaks& breaks) {
    const PangoFace& face = m_fonts.Face(font);
    Layout layout{GObjectHandle<PangoLayout>(pango_layout_new(m_fonts.Context())), face.lineHeight,
                  face.ascent};
    PangoLayout* const lines = layout.lines.get();
    pango_layout_set_font_description(lines, face.description.get());
    pango_layout_set_single_paragraph_mode(lines, breaks.singleLine);
    if (breaks.width > 0) {
        pango_layout_set_width(lines, breaks.width * PANGO_SCALE);
        pango_layout_set_wrap(lines, PANGO_WRAP_WORD_CHAR);
    }
    if (breaks.lines > 0) {
        pango_layout_set_height(lines, -breaks.lines);
        pango_layout_set_ellipsize(lines, PANGO_ELLIPSIZE_END);
    }
    const std::string shown = Presentable(text, breaks.singleLine);
    pango_layout_set_text(lines, shown.data(), static_cast<int>(shown.size()));
    return layout;
}

void PangoText::ForgetOldest() {
    m_layouts.erase(
        std::ranges::min_element(m_layouts, {}, [](const auto& entry) { return entry.second.lastUse; }));
}

}  // namespace varkel
