#include "platform/linux/offscreen_display.h"

namespace varkel {

OffscreenDisplay::OffscreenDisplay(MessageLoop& loop, UnitFiles& files) : PaintedDisplay(loop, files) {}

void OffscreenDisplay::Touch(TouchAction action, Point at) {
    Input()->SetCursorPos(action == TouchAction::Up ? Point{-1, -1} : at);
    Input()->Put(TouchEvent{action, at});
}

void OffscreenDisplay::Tap(Point at) {
    Touch(TouchAction::Down, at);
    Touch(TouchAction::Up, at);
}

void OffscreenDisplay::Key(const KeyEvent& key) {
    Input()->Put(key);
}

void OffscreenDisplay::Close() {
    Input()->Put(CloseRequest{});
}

bool OffscreenDisplay::SavePng(const std::string& file) const {
    return cairo_surface_write_to_png(BackBuffer().Pixels(), file.c_str()) == CAIRO_STATUS_SUCCESS;
}

}  // namespace varkel
