#include "ui/toolkit/edit_field.h"

#include <algorithm>

#include "platform/text.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

namespace {

constexpr int margin = 12;
constexpr int caretWidth = 2;
constexpr int radius = 8;
constexpr std::string_view dot = "\u2022";
constexpr auto lineFormat = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;

std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at = NextCharacter(text, at))
        ++count;
    return count;
}

}  // namespace

EditField::EditField(Dialog& parent, const EditSpec& spec)
    : Control(parent, spec.id, spec.rect),
      m_spec(spec),
      m_font(HeiFont(spec.height)),
      m_color(parent.Colors().edit),
      m_ground(parent.Colors().editBack),
      m_hint(parent.LoadText(spec.hint)) {
    Layout();
}

void EditField::SetPlace(const Rect& placeInDialog) {
    MoveWindow(placeInDialog);
    Layout();
}

void EditField::SetColors(ColorRef text, ColorRef ground) {
    m_color = text;
    m_ground = ground;
    Invalidate();
}

void EditField::SetWindowText(std::string_view text) {
    m_text.clear();
    m_caret = 0;
    // What a record or another program holds is shown as it is: only the length is bound.
    const std::u16string units = Utf16FromUtf8(text);
    std::size_t count = std::min(units.size(), m_spec.maxUnits);
    if (count > 0 && count < units.size() && units[count] >= 0xDC00 && units[count] <= 0xDFFF) --count;
    m_text = Utf8FromUtf16(std::u16string_view(units).substr(0, count));
    m_caret = m_text.size();
    Layout();
}

bool EditField::Accepts(char character) const {
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) return false;
    const bool digit = character >= '0' && character <= '9';
    switch (m_spec.input) {
        case EditInput::Text: return true;
        case EditInput::Digits: return digit;
        case EditInput::PhoneNumber: return digit || character == '*' || character == '#' || character == '+';
    }
    return false;
}

void EditField::Insert(std::string_view typed) {
    if (m_spec.readOnly) return;
    const std::string text = Utf8FromUtf16(Utf16FromUtf8(typed));  // well-formed from here on
    bool changed = false;
    std::size_t units = Utf16FromUtf8(m_text).size();
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t next = NextCharacter(text, at);
        const std::string_view character = std::string_view(text).substr(at, next - at);
        at = next;
        const std::size_t more = Utf16FromUtf8(character).size();
        if (!Accepts(character.front()) || units + more > m_spec.maxUnits) continue;
        m_text.insert(m_caret, character);
        m_caret += character.size();
        units += more;
        changed = true;
    }
    if (changed) Changed();
}

void EditField::Backspace() {
    if (m_spec.readOnly || m_caret == 0) return;
    const std::size_t before = PreviousCharacter(m_text, m_caret);
    m_text.erase(before, m_caret - before);
    m_caret = before;
    Changed();
}

void EditField::Changed() {
    Layout();
    if (onChange) onChange();
}

void EditField::MoveCaret(std::size_t position) {
    m_caret = position;
    Layout();
}

std::size_t EditField::ShownPosition(std::size_t position) const {
    if (!m_spec.password) return position;
    return CountCharacters(std::string_view(m_text).substr(0, position)) * dot.size();
}

std::size_t EditField::TextPosition(std::size_t shown) const {
    if (!m_spec.password) return shown;
    std::size_t position = 0;
    for (std::size_t count = shown / dot.size(); count > 0; --count)
        position = NextCharacter(m_text, position);
    return position;
}

Rect EditField::Inside() const {
    return {Place().x + margin, Place().y + 4, Place().width - 2 * margin, Place().height - 8};
}

// Cuts the text into lines, and moves what is seen of it so that the caret is.
void EditField::Layout() {
    Graphics& graphics = Parent().GetDesktop().GetGraphics();
    m_shown = m_text;
    if (m_spec.password) {
        m_shown.clear();
        for (std::size_t count = CountCharacters(m_text); count > 0; --count)
            m_shown += dot;
    }
    const Rect inside = Inside();
    if (!m_spec.multiLine) {
        m_lines = {{0, m_shown.size()}};
        m_lineHeight = inside.height;
        const int caret = graphics.CaretPlace(m_shown, m_font, ShownPosition(m_caret));
        const int whole = graphics.MeasureText(m_shown, m_font).width + caretWidth;
        m_scroll = std::clamp(m_scroll, caret + caretWidth - inside.width, caret);
        m_scroll = std::clamp(m_scroll, 0, std::max(0, whole - inside.width));
    } else {
        m_lines = CutIntoLines(graphics, m_shown, m_font, inside.width - caretWidth);
        m_lineHeight = std::max(1, graphics.MeasureText("Ag", m_font).height);
        const std::size_t seen = static_cast<std::size_t>(std::max(1, inside.height / m_lineHeight));
        const std::size_t line = LineOf(m_lines, m_caret);
        if (line < m_firstLine) m_firstLine = line;
        if (line >= m_firstLine + seen) m_firstLine = line - seen + 1;
        m_firstLine = std::min(m_firstLine, m_lines.size() - 1);
    }
    Invalidate();
}

std::string_view EditField::ShownLine(std::size_t line) const {
    const TextLine& place = m_lines[line];
    return std::string_view(m_shown).substr(place.begin, place.end - place.begin);
}

int EditField::LineLeft(std::size_t line) const {
    if (!Parent().GetDesktop().ReadsRightToLeft()) return Inside().x - m_scroll;
    const int width = Parent().GetDesktop().GetGraphics().MeasureText(ShownLine(line), m_font).width;
    return std::max(Inside().Right() - caretWidth - width, Inside().x - m_scroll);
}

void EditField::Draw(Canvas& canvas) {
    const Palette& palette = Parent().GetDesktop().Colors();
    Graphics& graphics = Parent().GetDesktop().GetGraphics();
    canvas.RoundRect(Place(), radius, m_ground, HasFocus() ? palette.accent : palette.edge, 2);
    const Rect inside = Inside();
    canvas.PushClip(inside);
    if (m_text.empty() && !m_hint.empty()) {
        const TextFormat side =
            Parent().GetDesktop().ReadsRightToLeft() ? TextFormat::Right : TextFormat::Left;
        canvas.DrawText(m_hint, inside, lineFormat | side, m_font, palette.secondary);
    }
    const std::size_t caretLine = LineOf(m_lines, ShownPosition(m_caret));
    int top = inside.y;
    for (std::size_t line = m_firstLine; line < m_lines.size() && top < inside.Bottom(); ++line) {
        const int left = LineLeft(line);
        const int width = graphics.MeasureText(ShownLine(line), m_font).width;
        canvas.DrawText(ShownLine(line), {left, top, width + caretWidth, m_lineHeight}, lineFormat, m_font,
                        m_color);
        if (HasFocus() && !m_spec.readOnly && line == caretLine) {
            const int caret =
                graphics.CaretPlace(ShownLine(line), m_font, ShownPosition(m_caret) - m_lines[line].begin);
            canvas.FillRect({left + caret, top + 2, caretWidth, m_lineHeight - 4}, m_color);
        }
        top += m_lineHeight;
    }
    canvas.PopClip();
}

void EditField::AppendTargets(std::vector<TouchTarget>& targets) const {
    targets.push_back({Id(), FingerSized(Place())});
}

void EditField::Edit() {
    // A second time brings back a keyboard that was put away.
    HasFocus() ? RaiseKeyboard() : Parent().SetFocus(this);
}

void EditField::OnTouchDown(Point at) {
    Edit();
    MoveCaretTo(at);
}

void EditField::MoveCaretTo(Point at) {
    const int row = std::max(0, at.y - Inside().y) / m_lineHeight;
    const std::size_t line = std::min(m_firstLine + static_cast<std::size_t>(row), m_lines.size() - 1);
    const std::size_t inLine =
        Parent().GetDesktop().GetGraphics().TextPosition(ShownLine(line), m_font, at.x - LineLeft(line));
    MoveCaret(TextPosition(m_lines[line].begin + inLine));
}

void EditField::MoveCaretLine(int by) {
    const std::size_t line = LineOf(m_lines, m_caret);
    const std::size_t other = by < 0 ? line - 1 : line + 1;
    if (other >= m_lines.size()) return;
    Graphics& graphics = Parent().GetDesktop().GetGraphics();
    const int x = graphics.CaretPlace(ShownLine(line), m_font, m_caret - m_lines[line].begin);
    MoveCaret(m_lines[other].begin + graphics.TextPosition(ShownLine(other), m_font, x));
}

void EditField::OnFocus(bool has) {
    Invalidate();
    if (has) RaiseKeyboard();
}

void EditField::RaiseKeyboard() {
    const auto& sipShowIM = Parent().GetDesktop().hooks.sipShowIM;
    if (m_spec.softKeyboard && sipShowIM) sipShowIM(true, Parent());
}

bool EditField::OnKey(const KeyEvent& event) {
    switch (event.code) {
        case KeyCode::Back: Backspace(); return true;
        case KeyCode::Delete:
            if (m_caret == m_text.size()) return true;
            m_caret = NextCharacter(m_text, m_caret);
            Backspace();
            return true;
        case KeyCode::Left: MoveCaret(PreviousCharacter(m_text, m_caret)); return true;
        case KeyCode::Right: MoveCaret(NextCharacter(m_text, m_caret)); return true;
        case KeyCode::Up: MoveCaretLine(-1); return m_spec.multiLine;
        case KeyCode::Down: MoveCaretLine(1); return m_spec.multiLine;
        case KeyCode::Home: MoveCaret(0); return true;
        case KeyCode::End: MoveCaret(m_text.size()); return true;
        case KeyCode::None: Insert(event.text); return true;
        default: return false;
    }
}

}  // namespace varkel
