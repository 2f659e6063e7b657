// Items of which one is selected. Dialog thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog_spec.h"
#include "ui/toolkit/marked_text.h"

namespace varkel {

// A finger that is lifted on another item than the selected one selects it and clicks.
class RadioGroup final : public Control {
  public:
    RadioGroup(Dialog& parent, const RadioSpec& spec);

    // Counted from 0. Selecting by the program does not click.
    void Select(int item);
    int Selected() const { return m_selected; }
    void SetTextStyle(const TextStyle& style);

    void Draw(Canvas& canvas) override;
    void AppendTargets(std::vector<TouchTarget>& targets) const override;
    void OnTouchDown(Point at) override;
    void OnTouchUp(Point at) override;

  private:
    Rect PlaceOf(int item) const;
    // The item under a point, or the nearest one whose finger-sized place holds it; -1 when there is none.
    int ItemAt(Point at) const;
    void DrawItem(Canvas& canvas, int item) const;

    Size m_item;
    RadioLook m_look;
    MarkPictures m_pictures;
    TextStyle m_style;
    std::vector<std::string> m_texts;
    int m_selected = 0;
    int m_pressed = -1;
};

}  // namespace varkel
