#include "ui/toolkit/desktop.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "ui/toolkit/dialog.h"

namespace varkel {

namespace {

constexpr Rect wholeScreen{0, 0, Display::screen.width, Display::screen.height};

}  // namespace

Desktop::Desktop(const UiServices& services)
    : m_services(services), m_settings(services.registry), m_palette(Palette::Load(services.files)) {
    DisplayClient client;
    client.onPaint = [this](Canvas& canvas, const Rect& damage) { Paint(canvas, damage, m_stack.size()); };
    client.onTouch = [this](const TouchEvent& event) { OnTouch(event); };
    client.onKey = [this](const KeyEvent& event) { OnKey(event); };
    client.onClose = [this] {
        if (hooks.onClose) hooks.onClose();
    };
    m_services.display.SetClient(std::move(client));
}

Desktop::~Desktop() {
    assert(m_stack.empty());
    m_services.display.SetClient({});
}

void Desktop::Invalidate(const Rect& rect) {
    m_services.display.InvalidateRect(rect);
}

void Desktop::Add(Dialog& dialog) {
    const auto above = std::find_if(m_stack.begin(), m_stack.end(), [&dialog](const Dialog* other) {
        return other->Spec().layer > dialog.Spec().layer;
    });
    m_stack.insert(above, &dialog);
    OnStateChanged();
    Invalidate(dialog.Place());
}

void Desktop::AddAtBottom(Dialog& dialog) {
    m_stack.insert(m_stack.begin(), &dialog);
    OnStateChanged();
    Invalidate(dialog.Place());
}

void Desktop::Remove(Dialog& dialog) {
    if (m_touched == &dialog) m_touched = nullptr;
    std::erase(m_stack, &dialog);
    OnStateChanged();
    Invalidate(dialog.Place());
}

void Desktop::OnStateChanged() {
    // A finger that was down on a dialog that is covered now, hidden or disabled, has nothing under it.
    if (m_touched && !(m_touched->TakesInput() && IsReached(*m_touched))) {
        std::exchange(m_touched, nullptr)->CancelTouch();
    }
    const bool show = std::any_of(m_stack.begin(), m_stack.end(),
                                  [](const Dialog* dialog) { return dialog->IsWindowVisible(); });
    if (show != m_services.display.IsShown()) m_services.display.ShowWindow(show);
}

bool Desktop::IsReached(const Dialog& dialog) const {
    const auto blocks = [&dialog](const Dialog* other) {
        return other == &dialog ||
               (other->IsWindowVisible() && other->Spec().scope == DialogScope::Everything);
    };
    const auto top = std::find_if(m_stack.rbegin(), m_stack.rend(), blocks);
    return top != m_stack.rend() && *top == &dialog;
}

void Desktop::OnSessionChanged() {
    const std::vector<Dialog*> dialogs = m_stack;
    for (Dialog* const dialog : dialogs) {
        // One that was told before may have closed it.
        if (std::find(m_stack.begin(), m_stack.end(), dialog) != m_stack.end()) dialog->OnSessionChanged();
    }
}

Dialog* Desktop::Active() const {
    const auto top = std::find_if(m_stack.rbegin(), m_stack.rend(), [](const Dialog* dialog) {
        return dialog->IsWindowVisible() && dialog->Spec().scope == DialogScope::Everything;
    });
    return top == m_stack.rend() ? nullptr : *top;
}

Dialog* Desktop::DialogAt(Point at) const {
    const auto top = std::find_if(m_stack.rbegin(), m_stack.rend(), [at](const Dialog* dialog) {
        return dialog->IsWindowVisible() &&
               (dialog->Spec().scope == DialogScope::Everything || dialog->Reach().Contains(at));
    });
    return top == m_stack.rend() ? nullptr : *top;
}

void Desktop::Paint(Canvas& canvas, const Rect& damage, std::size_t count) {
    const auto begin = m_stack.begin();
    const auto end = begin + static_cast<std::ptrdiff_t>(count);
    // Nothing below a dialog that covers the whole damage can be seen.
    const auto covers = [&damage](const Dialog* dialog) {
        return dialog->IsWindowVisible() && Intersection(dialog->Place(), damage) == damage;
    };
    const auto topmost =
        std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(begin), covers);
    auto first = begin;
    if (topmost != std::make_reverse_iterator(begin)) {
        first = topmost.base() - 1;
    } else {
        canvas.FillRect(damage, m_palette.background);
    }
    for (; first != end; ++first) {
        if ((*first)->IsWindowVisible()) (*first)->Paint(canvas, damage);
    }
}

std::unique_ptr<Surface> Desktop::PictureBelow(const Dialog& dialog) {
    auto surface = GetGraphics().CreateSurface(Display::screen);
    if (!surface) return nullptr;
    const auto place = std::find(m_stack.begin(), m_stack.end(), &dialog);
    Paint(surface->GetCanvas(), wholeScreen, static_cast<std::size_t>(place - m_stack.begin()));
    return surface;
}

void Desktop::OnTouch(const TouchEvent& event) {
    if (event.action == TouchAction::Down) {
        // A second finger does nothing.
        if (std::exchange(m_touching, true)) return;
        m_touched = DialogAt(event.at);
        if (m_touched && !m_touched->TakesInput()) m_touched = nullptr;
    }
    if (!m_touching) {
        Dialog* const below = DialogAt(event.at);
        if (below && below->TakesInput()) below->OnHover(event.at);
        return;
    }
    Dialog* const dialog = m_touched;
    if (event.action == TouchAction::Up) {
        m_touching = false;
        m_touched = nullptr;
    }
    if (dialog) dialog->OnTouchEvent(event);
}

void Desktop::OnKey(const KeyEvent& event) {
    if (event.code == KeyCode::Sleep || event.code == KeyCode::WakeUp) {
        if (hooks.onSystemKey) hooks.onSystemKey(event.code);
        return;
    }
    Dialog* const dialog = Active();
    if (dialog && dialog->TakesInput()) dialog->OnKeyEvent(event);
}

}  // namespace varkel
