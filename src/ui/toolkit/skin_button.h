// A push button drawn from up to three pictures. Dialog thread.
#pragma once

#include <string>
#include <string_view>

#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog_spec.h"

namespace varkel {

// The bits of an owner-drawn item's state, as ODS_... number them.
enum class ItemState : unsigned { Normal = 0, Selected = 1, Disabled = 4, Focus = 16 };
constexpr ItemState operator|(ItemState a, ItemState b) {
    return static_cast<ItemState>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

// A finger presses the button while it is on it; lifted there it clicks, lifted elsewhere nothing happens.
class CSkinButton final : public Control {
  public:
    // A plain button with that caption.
    CSkinButton(Dialog& parent, int id, const Rect& placeInDialog, std::string caption = {});
    // The button of a table, with the pictures, font and colours that it names.
    CSkinButton(Dialog& parent, const ButtonSpec& spec);

    // Takes the three pictures, which stay the caller's, up to the first that is null; true when it took all
    // of them, and from then on the button is drawn from them. Without them it stays a plain button. The
    // option is always 1.
    bool Attach(const Bitmap* normal, const Bitmap* pressed, const Bitmap* disabled, int option = 1);
    bool IsOwnerDrawn() const { return m_ownerDrawn; }

    void SetWindowText(std::string_view text);
    const std::string& GetWindowText() const { return m_text; }
    void SetTextColors(ColorRef normal, ColorRef pressed);
    void SetFont(const LogFont& font);
    // Moves the top of the caption's rectangle down.
    void SetTextOffset(int pixels);
    void SetKeepNormalWhenFocused(bool keep) { m_keepNormalWhenFocused = keep; }

    // Draws the button in one of its states.
    void DrawItem(Canvas& canvas, ItemState state) const;

    void Draw(Canvas& canvas) override;
    void AppendTargets(std::vector<TouchTarget>& targets) const override;
    void OnTouchDown(Point at) override;
    void OnTouchMove(Point at) override;
    void OnTouchUp(Point at) override;
    void OnTouchCancel() override;
    bool TakesFocus() const override { return true; }
    bool OnKey(const KeyEvent& event) override;

  private:
    void SetPressed(bool pressed);
    void FitFont();
    void DrawFrame(Canvas& canvas) const;
    void DrawPlain(Canvas& canvas, bool pressed) const;

    const Bitmap* m_normal = nullptr;
    const Bitmap* m_pressedPicture = nullptr;
    const Bitmap* m_disabled = nullptr;
    bool m_keepNormalWhenFocused = false;
    ColorRef m_normalColor = 0;
    ColorRef m_pressedColor = 0;
    LogFont m_font;    // that of the system
    LogFont m_fitted;  // the same, low enough for the caption
    int m_textOffset = 0;
    bool m_ownerDrawn = false;
    bool m_pressed = false;
    std::string m_text;
};

}  // namespace varkel
