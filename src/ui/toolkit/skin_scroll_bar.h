// A vertical scroll bar drawn from pictures. Dialog thread.
#pragma once

#include "ui/toolkit/control.h"
#include "ui/toolkit/timers.h"

namespace varkel {

// SB_..., what a scroll bar tells its dialog.
enum class ScrollCode : int { LineUp = 0, LineDown = 1, ThumbTrack = 5 };

inline constexpr unsigned SBS_VERT = 1;

// Arrows step once when they are released, and again and again while they are held; the thumb follows the
// finger and jumps to where the channel is touched. The dialog moves the thumb itself, by SetScrollPos.
class CSkinScrollBar final : public Control {
  public:
    // Takes the place of another control, which is hidden. Without SBS_VERT it says that it cannot, and draws
    // nothing.
    CSkinScrollBar(Dialog& parent, unsigned style, int placeHolder);

    // Positions go from `least` to `most`; a page makes the thumb as large as what is seen of the whole.
    void SetScrollRange(int least, int most, int page = 1);
    void SetScrollPos(int position);
    int GetScrollPos() const { return m_position; }

    void Draw(Canvas& canvas) override;
    void AppendTargets(std::vector<TouchTarget>& targets) const override;
    void OnTouchDown(Point at) override;
    void OnTouchMove(Point at) override;
    void OnTouchUp(Point at) override;
    void OnTouchCancel() override;
    void OnHover(Point at) override;

  private:
    enum class Part { None, UpArrow, DownArrow, Thumb, Channel };

    void LoadImages();
    Rect UpArrow() const;
    Rect DownArrow() const;
    Rect Channel() const;
    Rect Thumb() const;
    Point Inside(Point at) const;
    Part PartAt(Point at) const;
    void Step();
    void Track(int thumbTop);
    void EndPress();
    void SetHovered(bool hovered);

    Timers m_timers;
    const Bitmap* m_channel = nullptr;
    const Bitmap* m_upArrow = nullptr;
    const Bitmap* m_downArrow = nullptr;
    const Bitmap* m_upArrowSel = nullptr;
    const Bitmap* m_downArrowSel = nullptr;
    ColorRef m_fill = 0;
    int m_arrowHeight = 0;

    int m_least = 0;
    int m_most = 0;
    int m_page = 1;
    int m_position = 0;
    Part m_pressed = Part::None;
    int m_grip = 0;  // from the thumb's top to the finger
    bool m_hovered = false;
};

}  // namespace varkel
