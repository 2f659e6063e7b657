// The base of all screens and boxes: controls made from a table, and what becomes of touches, keys and
// timers. Dialog thread.
#pragma once

#include <cassert>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ui/toolkit/control.h"
#include "ui/toolkit/curtain.h"
#include "ui/toolkit/desktop.h"
#include "ui/toolkit/dialog_spec.h"
#include "ui/toolkit/timers.h"

namespace varkel {

class CSkinScrollBar;
enum class ScrollCode : int;

// A screen derives from this, names its handlers in its constructor, and fills its controls in OnInitDialog.
// Controls, pictures and texts exist from then on until the dialog is closed; it can be opened again.
class Dialog {
  public:
    // `spec` outlives the dialog.
    Dialog(Desktop& desktop, const DialogSpec& spec);
    virtual ~Dialog();
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    // Opens the dialog and returns when it has ended; Cancel when it is open already or the program ends.
    DialogResult DoModal();
    // Opens the dialog and returns; `onClosed` runs when it has ended, from the message loop, and may destroy
    // the dialog. On an open dialog this does nothing.
    void Show(std::function<void(DialogResult)> onClosed = nullptr);
    // The dialog leaves the screen, at once or by its animation. The first result holds.
    void EndDialog(DialogResult result);
    bool IsOpen() const { return m_stage != Stage::Closed; }

    // An open dialog may be hidden and shown, and may be closed to all input.
    void ShowWindow(bool show);
    bool IsWindowVisible() const { return m_visible; }
    void EnableWindow(bool enable);
    bool IsWindowEnabled() const { return m_enabled; }
    bool TakesInput() const {
        return m_stage == Stage::Open && m_enabled && m_visible && !m_curtain.Moving();
    }

    const DialogSpec& Spec() const { return m_spec; }
    // Where a touch belongs to it; may be more than what it draws on.
    virtual Rect Reach() const { return Place(); }
    const Rect& Place() const { return m_place; }
    // None for a dialog that other programs do not know.
    WindowHandle Window() const { return m_window; }
    Desktop& GetDesktop() const { return m_desktop; }
    const SkinColors& Colors() const { return m_colors; }
    void Invalidate(const Rect& rect);
    void Invalidate() { Invalidate(Place()); }

    // The control of that id and kind, which must exist.
    template <class Kind>
    Kind& Get(int id) const {
        Kind* found = nullptr;
        for (const auto& control : m_controls) {
            if (!found && control->Id() == id) found = dynamic_cast<Kind*>(control.get());
        }
        assert(found);
        return *found;
    }
    // What a finger can touch now.
    virtual std::vector<TouchTarget> Targets() const;

    // WM_COMMAND: runs the handler of that control.
    void Click(int id);
    Control* Focus() const { return m_focus; }
    // Null takes the keys from all controls.
    void SetFocus(Control* control);
    // Where the soft keyboard last said that it stands.
    const Rect& SipRect() const { return m_sipRect; }
    // Null when the file is missing; it belongs to this dialog until that is closed.
    const Bitmap* LoadPicture(std::string_view name);
    // The text of a key, in its display form; anything else is shown as it stands.
    std::string LoadText(std::string_view caption) const;

    // For the desktop and the soft keyboard.
    void Paint(Canvas& canvas, const Rect& damage);
    void OnTouchEvent(const TouchEvent& event);
    void OnKeyEvent(const KeyEvent& event);
    void OnHover(Point at);
    void CancelTouch();
    // The soft keyboard comes for a field of this dialog, or goes.
    virtual void OnSoftKeyboard(bool) {}
    // What the screens show of the session may have changed.
    virtual void OnSessionChanged() {}
    // For a scroll bar of this dialog.
    void OnScrollEvent(ScrollCode code, int position, CSkinScrollBar& bar);

  protected:
    // All controls are there; what depends on the moment is put into them.
    virtual void OnInitDialog() {}
    // The dialog has ended; the controls are still there.
    virtual void OnDestroy() {}
    // Draws on the background, below the controls.
    virtual void OnPaint(Canvas&) {}
    // A touch that began where no control is, and its end when something took it away.
    virtual void OnTouch(const TouchEvent&) {}
    virtual void OnTouchCancel() {}
    // A key that the focused control has no use for; false to leave it to the dialog.
    virtual bool OnKey(const KeyEvent&) { return false; }
    virtual void OnFocusChanged(int) {}
    // WM_VSCROLL of a scroll bar.
    virtual void OnVScroll(ScrollCode, int, CSkinScrollBar&) {}
    // What the Escape key does.
    virtual void OnCancel();
    // A message to the dialog's window.
    virtual void OnMessage(const WindowMessage&) {}

    void OnClick(int id, std::function<void()> handler);
    // For a dialog without controls: where it stands from now on.
    void MoveTo(const Rect& place);
    void BringToTop();
    void SendToBottom();
    // Runs `handler` every `period` ms.
    void SetTimer(int id, Ticks period, std::function<void()> handler);
    void KillTimer(int id) { m_timers.Kill(id); }
    template <class Kind, class... Arguments>
    Kind& AddControl(Arguments&&... arguments) {
        auto control = std::make_unique<Kind>(*this, std::forward<Arguments>(arguments)...);
        Kind& added = *control;
        m_controls.push_back(std::move(control));
        return added;
    }

  private:
    enum class Stage { Closed, Open, Ending };

    // While a handler of this dialog is on the stack, its controls stay.
    class Handling {
      public:
        explicit Handling(Dialog& dialog) : m_dialog(dialog) { ++dialog.m_handling; }
        ~Handling();
        Handling(const Handling&) = delete;
        Handling& operator=(const Handling&) = delete;

      private:
        Dialog& m_dialog;
    };

    void Open();
    void OpenWindow();
    void CreateControls();
    bool Animates() const;
    void Leave();
    void LowerKeyboard();
    void FinishSoon();
    void Finish();
    Control* ControlAt(Point at) const;
    void ReceiveMessage(const WindowMessage& message);
    bool FocusNext();

    Desktop& m_desktop;
    const DialogSpec& m_spec;
    SkinColors m_colors;
    Timers m_timers;     // the screen's
    Timers m_ownTimers;  // of this class
    Curtain m_curtain;
    std::map<int, std::function<void()>> m_clicks;

    Rect m_place;
    Stage m_stage = Stage::Closed;
    DialogResult m_result = DialogResult::None;
    std::function<void(DialogResult)> m_onClosed;
    bool m_modal = false;
    bool m_onStack = false;
    bool m_visible = false;
    bool m_enabled = true;
    int m_handling = 0;

    std::map<std::string, std::shared_ptr<const Bitmap>> m_pictures;
    const Bitmap* m_background = nullptr;
    std::vector<std::unique_ptr<Control>> m_controls;
    Control* m_touched = nullptr;
    bool m_touchedGround = false;  // the finger came down beside the controls
    Control* m_focus = nullptr;
    Control* m_lastFocus = nullptr;

    WindowHandle m_window = WindowHandle::None;
    MessageId m_modifyFocus = 0;
    MessageId m_moveSipUp = 0;
    MessageId m_moveSipDown = 0;
    Rect m_sipRect;
};

}  // namespace varkel
