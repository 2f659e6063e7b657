// A picture with a text beside it, as radio items and check boxes are.
#pragma once

#include <string_view>

#include "platform/canvas.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

class Desktop;
class Dialog;

// The four pictures of a mark. A skin without disabled ones shows the others.
class MarkPictures {
  public:
    // "Check" stands for "Check", "CheckSel", "CheckDisable" and "CheckSelDisable"; "Radio1" for "Radio1" and
    // "RadioSel1".
    MarkPictures(Dialog& parent, std::string_view name);
    const Bitmap* Get(bool selected, bool enabled) const;

  private:
    const Bitmap* m_pictures[2][2]{};  // by selected, disabled
};

// The mark stands where the text begins, and is as high as the place at most; null = there is none.
void DrawMarkedText(Canvas& canvas, const Desktop& desktop, const Rect& place, const Bitmap* mark,
                    std::string_view text, const TextStyle& style);

}  // namespace varkel
