// One thing on a dialog: it draws itself and can be touched. Dialog thread.
#pragma once

#include <vector>

#include "platform/canvas.h"
#include "platform/display.h"

namespace varkel {

class Dialog;

// Where a finger has an effect.
struct TouchTarget {
    int id = 0;
    Rect rect;
};

// The dialog makes its controls when it opens and owns them until it is closed. All places are those of the
// screen, except where MoveWindow says otherwise.
class Control {
  public:
    Control(Dialog& parent, int id, const Rect& placeInDialog);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    int Id() const { return m_id; }
    const Rect& Place() const { return m_place; }

    // `placeInDialog` counts from the dialog's upper left corner.
    void MoveWindow(const Rect& placeInDialog);
    void ShowWindow(bool show);
    bool IsWindowVisible() const { return m_visible; }
    void EnableWindow(bool enable);
    bool IsWindowEnabled() const { return m_enabled; }
    void Invalidate();

    virtual void Draw(Canvas& canvas) = 0;

    // What a finger can touch; nothing for a control that only shows something. A target may reach past the
    // picture.
    virtual void AppendTargets(std::vector<TouchTarget>&) const {}
    // A finger came down inside a target. It belongs to this control until it is lifted, which counts only
    // where the control says so, or until something took it away.
    virtual void OnTouchDown(Point) {}
    virtual void OnTouchMove(Point) {}
    virtual void OnTouchUp(Point) {}
    virtual void OnTouchCancel() {}
    // A pointer passes over a target, without being pressed.
    virtual void OnHover(Point) {}

    // Whether keys can be given to this control, whether it has them, and what it does with one; false when
    // it has no use for that key.
    virtual bool TakesFocus() const { return false; }
    virtual void OnFocus(bool) { Invalidate(); }
    virtual bool OnKey(const KeyEvent&) { return false; }

  protected:
    Dialog& Parent() const { return m_parent; }
    bool HasFocus() const;
    // The place, grown evenly to what a finger needs.
    Rect FingerSized(const Rect& place) const;

    static constexpr int fingerSize = 63;  // pixels, both ways

  private:
    Dialog& m_parent;
    int m_id;
    Rect m_place;
    bool m_visible = true;
    bool m_enabled = true;
};

}  // namespace varkel
