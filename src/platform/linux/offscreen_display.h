// A display that nobody sees: for tests, the tour, and a unit without a screen.
#pragma once

#include <string>
#include <string_view>

#include "platform/linux/painted_display.h"

namespace varkel {

// Needs no thread and no clock of its own, so it works in virtual time. Dialog thread, except where something
// else is said.
class OffscreenDisplay final : public PaintedDisplay {
  public:
    OffscreenDisplay(MessageLoop& loop, UnitFiles& files);

    void SetWindowText(std::string_view) override {}

    // The user, as the message loop will tell. Any thread.
    void Touch(TouchAction action, Point at);
    // Down and up at one place.
    void Tap(Point at);
    void Key(const KeyEvent& key);
    void Close();

    // What was painted, up to the last paint.
    const Bitmap& Picture() const { return BackBuffer(); }
    // False when the file cannot be written.
    [[nodiscard]] bool SavePng(const std::string& file) const;

  private:
    void Present(const Rect&) override {}
    void ShowOnScreen(bool) override {}
};

}  // namespace varkel
