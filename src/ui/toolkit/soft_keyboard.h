// The soft keyboard: it docks at the top or the bottom of the screen, where it covers least of the field that
// is edited, and types into that field. Dialog thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "ui/toolkit/dialog.h"
#include "ui/toolkit/keyboard_pages.h"

namespace varkel {

// A finger that is lifted on a key types it; one that holds a key goes through its other characters, and one
// that holds the backspace key deletes on.
class SoftKeyboard final : public Dialog {
  public:
    // Takes the desktop's hook for SipShowIM.
    explicit SoftKeyboard(Desktop& desktop);
    ~SoftKeyboard() override;

    // For the focused field of the owner. The owner's window is told where the keyboard stands, by
    // "UM_UMOVESIPUP" or "UM_UMOVESIPDOWN", and then "UM_UMODIFYFOCUS".
    void SipShowIM(bool on, Dialog& owner);

    // A key's id is the code of the character that it types first; the others follow behind all controls.
    std::vector<TouchTarget> Targets() const override;
    // Where that key stands now; empty when the page has no such key.
    Rect PlaceOf(std::string_view character) const;
    Rect PlaceOf(KeyAction action) const;

    static constexpr int firstFunctionId = 0x10000;
    static constexpr Ticks holdTime = 500;      // until the next character of a key, or the second backspace
    static constexpr Ticks backspaceTime = 80;  // between further ones
    static constexpr int mostBackspaces = 200;  // of one touch

  private:
    struct PlacedKey {
        KeyboardKey key;
        Rect place;
    };
    enum class Shift { Off, Once, Locked };

    void OnInitDialog() override;
    void OnPaint(Canvas& canvas) override;
    void OnTouch(const TouchEvent& event) override;
    void OnTouchCancel() override { CancelPress(); }
    void CancelPress();
    void ShowPage(KeyboardPage page);
    void PlaceKeys();
    void DrawKey(Canvas& canvas, const PlacedKey& key, bool pressed) const;
    const Bitmap* PictureOf(const KeyboardKey& key, bool lit) const;
    std::string LabelOf(const PlacedKey& key, bool pressed) const;
    std::string Typed(const KeyboardKey& key, int step) const;
    int KeyAt(Point at) const;
    void Press(int key);
    void Release(const KeyboardKey& key);
    void HoldBackspace();
    void SendKey(const KeyEvent& event);
    void PostToOwner(std::string_view name);

    Dialog* m_owner = nullptr;  // whose field is edited; null while the keyboard is away
    KeyboardPage m_page = KeyboardPage::Latin;
    KeyboardPage m_national = KeyboardPage::Cyrillic;  // of the language
    Shift m_shift = Shift::Off;
    std::vector<PlacedKey> m_keys;
    std::map<std::string, const Bitmap*> m_pictures;
    int m_pressed = -1;
    int m_held = 0;  // steps
};

}  // namespace varkel
