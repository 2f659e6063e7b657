#include "ui/toolkit/curtain.h"

#include <algorithm>
#include <utility>

namespace varkel {

namespace {

constexpr int timer = 1;
constexpr Rect leftHalf{0, 0, 400, 480};
constexpr Rect rightHalf{400, 0, 400, 480};
static_assert(Curtain::duration == leftHalf.width / Curtain::step * Curtain::stepTime);

}  // namespace

Curtain::Curtain(MessageLoop& loop, TimerNumbers& numbers, std::function<void()> onStep)
    : m_timers(loop, numbers), m_onStep(std::move(onStep)) {}

void Curtain::Open(std::unique_ptr<Surface> picture, std::function<void()> done) {
    m_gap = 0;
    Move(1, std::move(picture), std::move(done));
}

void Curtain::Close(std::unique_ptr<Surface> picture, std::function<void()> done) {
    if (!Moving()) m_gap = leftHalf.width;
    Move(-1, std::move(picture), std::move(done));
}

void Curtain::Move(int direction, std::unique_ptr<Surface> picture, std::function<void()> done) {
    m_direction = direction;
    m_picture = std::move(picture);
    m_done = std::move(done);
    m_timers.Set(timer, stepTime, [this] { OnStep(); });
    m_onStep();
}

void Curtain::OnStep() {
    m_gap = std::clamp(m_gap + m_direction * step, 0, leftHalf.width);
    const bool over = m_gap == (m_direction > 0 ? leftHalf.width : 0);
    if (!over) {
        m_onStep();
        return;
    }
    const auto done = std::exchange(m_done, nullptr);
    Stop();
    m_onStep();
    done();
}

void Curtain::Stop() {
    m_timers.Kill(timer);
    m_direction = 0;
    m_picture.reset();
    m_done = nullptr;
}

void Curtain::Draw(Canvas& canvas) const {
    if (!m_picture) return;
    canvas.BitBlt(m_picture->Picture(), leftHalf, {-m_gap, 0});
    canvas.BitBlt(m_picture->Picture(), rightHalf, {rightHalf.x + m_gap, 0});
}

}  // namespace varkel
