#include "ui/toolkit/skin_scroll_bar.h"

#include <algorithm>
#include <string>

#include "ui/toolkit/dialog.h"

namespace varkel {

namespace {

constexpr int repeatTimer = 1;
constexpr int delayTimer = 2;
constexpr int hoverTimer = 3;
constexpr Ticks repeatTime = 50;
constexpr Ticks delayTime = 150;
constexpr Ticks hoverTime = 50;

constexpr Point fillPixel{13, 14};
constexpr int smallestThumb = 40;
constexpr int thumbInset = 6;

Rect InDialog(Dialog& parent, int placeHolder) {
    return parent.Get<Control>(placeHolder).Place().Moved(-parent.Place().x, -parent.Place().y);
}

}  // namespace

CSkinScrollBar::CSkinScrollBar(Dialog& parent, unsigned style, int placeHolder)
    : Control(parent, placeHolder, InDialog(parent, placeHolder)),
      m_timers(parent.GetDesktop().Loop(), parent.GetDesktop().Numbers()) {
    parent.Get<Control>(placeHolder).ShowWindow(false);
    if ((style & SBS_VERT) != 0) {
        LoadImages();
        return;
    }
    const auto& messageBox = parent.GetDesktop().hooks.messageBox;
    if (messageBox) messageBox("Don't surport horizontal scrollbar");
}

void CSkinScrollBar::LoadImages() {
    const auto load = [this](std::string_view name) {
        return Parent().LoadPicture(
            std::string("\\residentflash2\\bin\\GPRS\\Scrollbar\\VerticalScrollBar").append(name));
    };
    m_channel = load("Channel");
    m_upArrow = load("UpArrow");
    m_downArrow = load("DownArrow");
    m_upArrowSel = load("UpArrowSel");
    m_downArrowSel = load("DownArrowSel");
    if (!m_upArrow) return;
    m_arrowHeight = m_upArrow->GetSize().height;
    m_fill = m_upArrow->GetPixel(fillPixel);
}

void CSkinScrollBar::SetScrollRange(int least, int most, int page) {
    m_least = least;
    m_most = std::max(least, most);
    m_page = std::max(page, 1);
    m_position = std::clamp(m_position, m_least, m_most);
    Invalidate();
}

void CSkinScrollBar::SetScrollPos(int position) {
    const int shown = std::clamp(position, m_least, m_most);
    if (m_position == shown) return;
    m_position = shown;
    Invalidate();
}

Rect CSkinScrollBar::UpArrow() const {
    return {Place().x, Place().y, Place().width, m_arrowHeight};
}

Rect CSkinScrollBar::DownArrow() const {
    return {Place().x, Place().Bottom() - m_arrowHeight, Place().width, m_arrowHeight};
}

Rect CSkinScrollBar::Channel() const {
    return {Place().x, Place().y + m_arrowHeight, Place().width, Place().height - 2 * m_arrowHeight};
}

Rect CSkinScrollBar::Thumb() const {
    const Rect channel = Channel();
    const int steps = m_most - m_least;
    const auto share = static_cast<long long>(channel.height) * m_page / (steps + m_page);
    const int height =
        std::clamp(static_cast<int>(share), std::min(smallestThumb, channel.height), channel.height);
    const long long way = channel.height - height;
    const int offset = steps == 0 ? 0 : static_cast<int>(way * (m_position - m_least) / steps);
    return {channel.x, channel.y + offset, channel.width, height};
}

// What a finger reaches past the bar's sides counts as its middle.
Point CSkinScrollBar::Inside(Point at) const {
    return FingerSized(Place()).Contains(at) ? Point{Place().x + Place().width / 2, at.y} : at;
}

CSkinScrollBar::Part CSkinScrollBar::PartAt(Point at) const {
    if (UpArrow().Contains(at)) return Part::UpArrow;
    if (DownArrow().Contains(at)) return Part::DownArrow;
    if (Thumb().Contains(at)) return Part::Thumb;
    return Channel().Contains(at) ? Part::Channel : Part::None;
}

void CSkinScrollBar::Draw(Canvas& canvas) {
    if (m_channel) canvas.StretchBlt(*m_channel, Channel());
    const auto draw = [&canvas](const Bitmap* picture, const Rect& place) {
        if (picture) canvas.StretchBlt(*picture, place);
    };
    draw(m_pressed == Part::UpArrow ? m_upArrowSel : m_upArrow, UpArrow());
    draw(m_pressed == Part::DownArrow ? m_downArrowSel : m_downArrow, DownArrow());
    if (!m_upArrow || m_most == m_least) return;
    const bool lit = m_hovered || m_pressed == Part::Thumb;
    const Rect thumb = Thumb().Inset(lit ? thumbInset - 2 : thumbInset);
    canvas.RoundRect(thumb, thumb.width / 2, m_fill);
}

void CSkinScrollBar::AppendTargets(std::vector<TouchTarget>& targets) const {
    if (m_upArrow) targets.push_back({Id(), FingerSized(Place())});
}

void CSkinScrollBar::OnTouchDown(Point at) {
    m_pressed = PartAt(Inside(at));
    if (m_pressed == Part::None) return;
    if (m_pressed == Part::Channel) {
        m_grip = Thumb().height / 2;
        m_pressed = Part::Thumb;
        Track(at.y - m_grip);
    } else {
        m_grip = at.y - Thumb().y;
        m_timers.SetOnce(delayTimer, delayTime,
                         [this] { m_timers.Set(repeatTimer, repeatTime, [this] { Step(); }); });
    }
    Invalidate();
}

void CSkinScrollBar::Step() {
    if (m_pressed == Part::UpArrow) Parent().OnScrollEvent(ScrollCode::LineUp, m_position, *this);
    if (m_pressed == Part::DownArrow) Parent().OnScrollEvent(ScrollCode::LineDown, m_position, *this);
}

void CSkinScrollBar::Track(int thumbTop) {
    const Rect channel = Channel();
    const int way = channel.height - Thumb().height;
    const int steps = m_most - m_least;
    if (way <= 0 || steps == 0) return;
    const int offset = std::clamp(thumbTop - channel.y, 0, way);
    const auto position =
        m_least + static_cast<int>((static_cast<long long>(offset) * steps + way / 2) / way);
    SetScrollPos(position);
    Parent().OnScrollEvent(ScrollCode::ThumbTrack, position, *this);
}

void CSkinScrollBar::OnTouchMove(Point at) {
    if (m_pressed == Part::Thumb) Track(at.y - m_grip);
    OnHover(at);
}

void CSkinScrollBar::OnHover(Point at) {
    SetHovered(Place().Contains(at));
}

void CSkinScrollBar::OnTouchUp(Point at) {
    const bool pressed = m_pressed != Part::None;
    EndPress();
    if (!pressed) return;
    const Part part = PartAt(Inside(at));
    if (part == Part::UpArrow) Parent().OnScrollEvent(ScrollCode::LineUp, m_position, *this);
    if (part == Part::DownArrow) Parent().OnScrollEvent(ScrollCode::LineDown, m_position, *this);
}

void CSkinScrollBar::OnTouchCancel() {
    EndPress();
}

void CSkinScrollBar::EndPress() {
    m_timers.Kill(delayTimer);
    m_timers.Kill(repeatTimer);
    m_pressed = Part::None;
    Invalidate();
}

// The finger is asked for while the bar is lit: where it leaves the bar, nobody is told.
void CSkinScrollBar::SetHovered(bool hovered) {
    if (m_hovered == hovered) return;
    m_hovered = hovered;
    Invalidate();
    if (!hovered) {
        m_timers.Kill(hoverTimer);
        return;
    }
    m_timers.Set(hoverTimer, hoverTime, [this] {
        if (!Place().Contains(Parent().GetDesktop().GetCursorPos())) SetHovered(false);
    });
}

}  // namespace varkel
