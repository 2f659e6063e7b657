#include "platform/linux/painted_display.h"

#include <cassert>
#include <utility>

namespace varkel {

namespace {

constexpr Rect wholeScreen{0, 0, Display::screen.width, Display::screen.height};

std::unique_ptr<CairoBitmap> MakePicture() {
    auto picture = CairoBitmap::Create(Display::screen);
    assert(picture && "1.5 MiB for the screen");
    return picture;
}

}  // namespace

PaintedDisplay::PaintedDisplay(MessageLoop& loop, UnitFiles& files)
    : m_loop(loop),
      m_graphics(files),
      m_picture(MakePicture()),
      m_canvas(*m_picture, m_graphics.Text()),
      m_input(std::make_shared<DisplayInput>(loop)),
      m_client(std::make_shared<DisplayClient>()),
      m_self(std::make_shared<PaintedDisplay*>(this)) {
    m_input->SetHandler([this](const InputEvent& event) { Handle(event); });
}

PaintedDisplay::~PaintedDisplay() {
    m_input->SetHandler(nullptr);
}

void PaintedDisplay::SetClient(DisplayClient client) {
    m_client = std::make_shared<DisplayClient>(std::move(client));
    InvalidateRect(wholeScreen);
}

void PaintedDisplay::ShowWindow(bool show) {
    if (m_shown == show) return;
    m_shown = show;
    ShowOnScreen(show);
    if (show) InvalidateRect(wholeScreen);
}

void PaintedDisplay::InvalidateRect(const Rect& rect) {
    m_damage = Union(m_damage, Intersection(rect, wholeScreen));
    if (m_shown && !m_damage.Empty() && !m_posted) PaintSoon();
}

void PaintedDisplay::PaintSoon() {
    // When the loop's queue is full, whatever is marked next tries again.
    m_posted = m_loop.Post([alive = std::weak_ptr(m_self)] {
        const auto self = alive.lock();
        if (!self) return;
        (*self)->m_posted = false;
        (*self)->UpdateWindow();
    });
}

void PaintedDisplay::UpdateWindow() {
    const auto client = m_client;
    if (!m_shown || m_painting || m_damage.Empty() || !client->onPaint) return;
    const Rect damage = std::exchange(m_damage, Rect{});
    m_painting = true;
    m_canvas.PushClip(damage);
    client->onPaint(m_canvas, damage);
    m_canvas.PopAllClips();
    m_painting = false;
    Present(damage);
}

void PaintedDisplay::Handle(const InputEvent& event) {
    const auto client = m_client;
    if (const auto* const touch = std::get_if<TouchEvent>(&event)) {
        // What was touched before it was hidden is still told of the end.
        const bool ends = touch->action == TouchAction::Up;
        if (ends ? !m_touched : !m_shown) return;
        if (touch->action != TouchAction::Move) m_touched = !ends;
        if (client->onTouch) client->onTouch(*touch);
    } else if (const auto* const key = std::get_if<KeyEvent>(&event)) {
        if (client->onKey) client->onKey(*key);
    } else if (client->onClose) {
        client->onClose();
    }
}

}  // namespace varkel
