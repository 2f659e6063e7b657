// A field in which text is typed, on one line or several. Dialog thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog_spec.h"
#include "ui/toolkit/text_lines.h"

namespace varkel {

// A finger that is lifted on the field gives it the focus and puts the caret where it was. Keys come from the
// unit's keyboard or from the soft one; what the field may not hold, or has no room for, is not taken.
class EditField final : public Control {
  public:
    EditField(Dialog& parent, const EditSpec& spec);

    // Cut where it is too long; the caret goes to its end. Setting does not report a change.
    void SetWindowText(std::string_view text);
    const std::string& GetWindowText() const { return m_text; }
    // Shows the beginning of a long text.
    void MoveToStart() { MoveCaret(0); }
    void Insert(std::string_view typed);
    void Backspace();
    // As a touch does: takes the focus and raises the soft keyboard.
    void Edit();
    void SetPlace(const Rect& placeInDialog);
    void SetColors(ColorRef text, ColorRef ground);
    const EditSpec& Spec() const { return m_spec; }
    // The user has changed the text.
    std::function<void()> onChange;

    void Draw(Canvas& canvas) override;
    void AppendTargets(std::vector<TouchTarget>& targets) const override;
    void OnTouchDown(Point at) override;
    void OnTouchMove(Point at) override { MoveCaretTo(at); }
    bool TakesFocus() const override { return true; }
    void OnFocus(bool has) override;
    bool OnKey(const KeyEvent& event) override;

  private:
    void RaiseKeyboard();
    bool Accepts(char character) const;
    void Changed();
    void MoveCaret(std::size_t position);
    void MoveCaretLine(int by);
    void MoveCaretTo(Point at);
    void Layout();
    Rect Inside() const;
    std::string_view ShownLine(std::size_t line) const;
    int LineLeft(std::size_t line) const;
    // Between the text and what is shown of it, which for a password is one dot a character.
    std::size_t ShownPosition(std::size_t position) const;
    std::size_t TextPosition(std::size_t shown) const;

    const EditSpec m_spec;
    LogFont m_font;
    ColorRef m_color;
    ColorRef m_ground;
    std::string m_hint;
    std::string m_text;
    std::size_t m_caret = 0;  // bytes

    std::string m_shown;
    std::vector<TextLine> m_lines;
    int m_lineHeight = 1;
    std::size_t m_firstLine = 0;  // the first that is seen
    int m_scroll = 0;             // pixels of a single line that are left of the field
};

}  // namespace varkel
