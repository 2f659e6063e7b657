#include "ui/toolkit/control.h"

#include <algorithm>

#include "ui/toolkit/dialog.h"

namespace varkel {

Control::Control(Dialog& parent, int id, const Rect& placeInDialog)
    : m_parent(parent), m_id(id), m_place(placeInDialog.Moved(parent.Place().x, parent.Place().y)) {}

void Control::MoveWindow(const Rect& placeInDialog) {
    Invalidate();
    m_place = placeInDialog.Moved(m_parent.Place().x, m_parent.Place().y);
    Invalidate();
}

void Control::ShowWindow(bool show) {
    if (m_visible == show) return;
    m_visible = show;
    m_parent.Invalidate(m_place);
}

void Control::EnableWindow(bool enable) {
    if (m_enabled == enable) return;
    m_enabled = enable;
    Invalidate();
}

void Control::Invalidate() {
    if (m_visible) m_parent.Invalidate(m_place);
}

bool Control::HasFocus() const {
    return m_parent.Focus() == this;
}

Rect Control::FingerSized(const Rect& place) const {
    const int width = std::max(place.width, fingerSize);
    const int height = std::max(place.height, fingerSize);
    return {place.x - (width - place.width) / 2, place.y - (height - place.height) / 2, width, height};
}

}  // namespace varkel
