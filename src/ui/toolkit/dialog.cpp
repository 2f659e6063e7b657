#include "ui/toolkit/dialog.h"

#include <algorithm>
#include <utility>

#include "ui/toolkit/check_box.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int closedTimer = 1;

// Where the soft keyboard docks.
constexpr Rect sipUp{1, 1, 798, 194};
constexpr Rect sipDown{1, 285, 798, 194};

}  // namespace

Dialog::Handling::~Handling() {
    --m_dialog.m_handling;
    m_dialog.FinishSoon();
}

Dialog::Dialog(Desktop& desktop, const DialogSpec& spec)
    : m_desktop(desktop),
      m_spec(spec),
      m_timers(desktop.Loop(), desktop.Numbers()),
      m_ownTimers(desktop.Loop(), desktop.Numbers()),
      m_curtain(desktop.Loop(), desktop.Numbers(), [this] { Invalidate(); }),
      m_place(spec.rect) {}

Dialog::~Dialog() {
    assert(m_handling == 0);
    // OnDestroy belongs to a class that is gone already.
    if (m_onStack) {
        LowerKeyboard();
        m_desktop.Remove(*this);
    }
    if (m_window != WindowHandle::None) m_desktop.Windows().DestroyWindow(m_window);
}

DialogResult Dialog::DoModal() {
    if (IsOpen()) return DialogResult::Cancel;
    m_modal = true;
    Open();
    m_desktop.Loop().Run([this] { return !m_onStack; });
    if (m_onStack) {
        m_result = DialogResult::Cancel;
        Leave();
    }
    Finish();
    return m_result;
}

void Dialog::Show(std::function<void(DialogResult)> onClosed) {
    if (IsOpen()) return;
    m_modal = false;
    m_onClosed = std::move(onClosed);
    Open();
}

void Dialog::Open() {
    m_stage = Stage::Open;
    m_result = DialogResult::None;
    m_visible = true;
    m_enabled = true;
    m_onStack = true;
    m_colors = m_desktop.GetSettings().LoadColors();
    OpenWindow();
    CreateControls();
    m_desktop.Add(*this);
    {
        const Handling handling(*this);
        OnInitDialog();
    }
    if (m_stage != Stage::Open || !Animates()) return;
    if (auto picture = m_desktop.PictureBelow(*this)) {
        m_curtain.Open(std::move(picture), [this] { Invalidate(); });
    }
}

bool Dialog::Animates() const {
    return m_spec.animated && m_desktop.GetSettings().ReadDwordOrOne(Settings::dialogTypeKey, "Gprs") == 1;
}

void Dialog::EndDialog(DialogResult result) {
    if (m_stage != Stage::Open) return;
    m_stage = Stage::Ending;
    m_result = result;
    SetFocus(nullptr);
    CancelTouch();
    m_timers.KillAll();
    LowerKeyboard();
    if (m_visible && Animates()) {
        if (auto picture = m_desktop.PictureBelow(*this)) {
            m_curtain.Close(std::move(picture), [this] { Leave(); });
            return;
        }
    }
    Leave();
}

void Dialog::Leave() {
    m_stage = Stage::Ending;
    LowerKeyboard();
    m_curtain.Stop();
    m_onStack = false;
    m_visible = false;
    m_desktop.Remove(*this);
    FinishSoon();
}

void Dialog::LowerKeyboard() {
    if (!m_spec.edits.empty() && m_desktop.hooks.sipShowIM) m_desktop.hooks.sipShowIM(false, *this);
}

void Dialog::FinishSoon() {
    const bool left = m_stage == Stage::Ending && !m_onStack;
    if (!left || m_modal || m_handling > 0) return;
    m_ownTimers.SetOnce(closedTimer, 0, [this] {
        Finish();
        if (const auto onClosed = std::exchange(m_onClosed, nullptr)) onClosed(m_result);
    });
}

void Dialog::Finish() {
    OnDestroy();
    m_timers.KillAll();
    m_ownTimers.KillAll();
    m_focus = m_lastFocus = nullptr;
    m_touched = nullptr;
    m_controls.clear();
    m_background = nullptr;
    m_pictures.clear();
    if (m_window != WindowHandle::None) m_desktop.Windows().DestroyWindow(m_window);
    m_window = WindowHandle::None;
    m_stage = Stage::Closed;
}

void Dialog::OpenWindow() {
    if (m_spec.edits.empty() && m_spec.windowText.empty()) return;
    WindowMessages& windows = m_desktop.Windows();
    WindowProcedure procedure;
    procedure.onMessage = [this](const WindowMessage& message) { ReceiveMessage(message); };
    m_window = windows.CreateWindow(m_spec.windowText, std::move(procedure));
    m_modifyFocus = windows.RegisterWindowMessage("UM_UMODIFYFOCUS");
    m_moveSipUp = windows.RegisterWindowMessage("UM_UMOVESIPUP");
    m_moveSipDown = windows.RegisterWindowMessage("UM_UMOVESIPDOWN");
}

void Dialog::ReceiveMessage(const WindowMessage& message) {
    if (m_stage != Stage::Open) return;
    const Handling handling(*this);
    if (message.id == m_modifyFocus) {
        if (!m_focus) SetFocus(m_lastFocus);
    } else if (message.id == m_moveSipUp) {
        m_sipRect = sipUp;
    } else if (message.id == m_moveSipDown) {
        m_sipRect = sipDown;
    } else {
        OnMessage(message);
    }
}

void Dialog::CreateControls() {
    if (!m_spec.background.empty()) m_background = LoadPicture(m_spec.background);
    for (const PlaceSpec& spec : m_spec.places)
        AddControl<PlaceHolder>(spec);
    for (const TextSpec& spec : m_spec.texts)
        AddControl<StaticText>(spec);
    for (const EditSpec& spec : m_spec.edits)
        AddControl<EditField>(spec);
    for (const ListSpec& spec : m_spec.lists)
        AddControl<ListBox>(spec);
    for (const RadioSpec& spec : m_spec.radios)
        AddControl<RadioGroup>(spec);
    for (const CheckSpec& spec : m_spec.checks)
        AddControl<CheckBox>(spec);
    for (const ButtonSpec& spec : m_spec.buttons)
        AddControl<CSkinButton>(spec);
}

const Bitmap* Dialog::LoadPicture(std::string_view name) {
    if (name.empty()) return nullptr;
    std::string path(name.front() == '\\' ? "" : m_spec.directory);
    path.append(name).append(".bmp");
    const auto [place, isNew] = m_pictures.try_emplace(path);
    if (isNew) place->second = m_desktop.GetGraphics().LoadBitmap(path);
    return place->second.get();
}

std::string Dialog::LoadText(std::string_view caption) const {
    if (!caption.starts_with("IDS_")) return std::string(caption);
    return DispRightToLeft(m_desktop.Texts().LoadString(caption));
}

void Dialog::ShowWindow(bool show) {
    if (!m_onStack || m_visible == show) return;
    m_visible = show;
    m_desktop.OnStateChanged();
    m_desktop.Invalidate(Place());
}

void Dialog::EnableWindow(bool enable) {
    m_enabled = enable;
    m_desktop.OnStateChanged();
}

void Dialog::MoveTo(const Rect& place) {
    Invalidate();
    m_place = place;
    Invalidate();
}

void Dialog::BringToTop() {
    if (!m_onStack) return;
    m_desktop.Remove(*this);
    m_desktop.Add(*this);
}

void Dialog::SendToBottom() {
    if (!m_onStack) return;
    m_desktop.Remove(*this);
    m_desktop.AddAtBottom(*this);
}

void Dialog::Invalidate(const Rect& rect) {
    if (m_visible) m_desktop.Invalidate(Intersection(rect, Place()));
}

void Dialog::Paint(Canvas& canvas, const Rect& damage) {
    const Rect area = Intersection(damage, Place());
    if (area.Empty()) return;
    canvas.PushClip(area);
    if (m_background) {
        canvas.BitBlt(*m_background, {Place().x, Place().y});
    } else {
        canvas.FillRect(area, m_desktop.Colors().background);
    }
    OnPaint(canvas);
    if (m_curtain.Moving()) {
        m_curtain.Draw(canvas);
    } else {
        for (const auto& control : m_controls) {
            if (control->IsWindowVisible() && !Intersection(control->Place(), area).Empty()) {
                control->Draw(canvas);
            }
        }
    }
    canvas.PopClip();
}

std::vector<TouchTarget> Dialog::Targets() const {
    std::vector<TouchTarget> targets;
    for (const auto& control : m_controls) {
        if (control->IsWindowVisible() && control->IsWindowEnabled()) control->AppendTargets(targets);
    }
    return targets;
}

// A target may reach past its picture, but never over the picture of another control.
Control* Dialog::ControlAt(Point at) const {
    Control* reached = nullptr;
    std::vector<TouchTarget> targets;
    for (auto control = m_controls.rbegin(); control != m_controls.rend(); ++control) {
        if (!(*control)->IsWindowVisible() || !(*control)->IsWindowEnabled()) continue;
        targets.clear();
        (*control)->AppendTargets(targets);
        const bool hit = std::any_of(targets.begin(), targets.end(),
                                     [at](const TouchTarget& target) { return target.rect.Contains(at); });
        if (!hit) continue;
        if ((*control)->Place().Contains(at)) return control->get();
        if (!reached) reached = control->get();
    }
    return reached;
}

void Dialog::OnTouchEvent(const TouchEvent& event) {
    const Handling handling(*this);
    if (event.action == TouchAction::Down) {
        m_touched = ControlAt(event.at);
        m_touchedGround = !m_touched;
        if (m_touched) m_touched->OnTouchDown(event.at);
    } else if (Control* const control = m_touched) {
        if (event.action == TouchAction::Up) m_touched = nullptr;
        event.action == TouchAction::Move ? control->OnTouchMove(event.at) : control->OnTouchUp(event.at);
        return;
    }
    if (!m_touchedGround) return;
    if (event.action == TouchAction::Up) m_touchedGround = false;
    OnTouch(event);
}

void Dialog::OnHover(Point at) {
    if (Control* const control = ControlAt(at)) control->OnHover(at);
}

void Dialog::CancelTouch() {
    if (std::exchange(m_touchedGround, false)) OnTouchCancel();
    if (Control* const control = std::exchange(m_touched, nullptr)) control->OnTouchCancel();
}

void Dialog::OnKeyEvent(const KeyEvent& event) {
    const Handling handling(*this);
    if (m_focus && m_focus->OnKey(event)) return;
    if (OnKey(event)) return;
    switch (event.code) {
        case KeyCode::Return: Click(m_spec.returnClicks); break;
        case KeyCode::Escape: OnCancel(); break;
        case KeyCode::Tab: FocusNext(); break;
        default: break;
    }
}

void Dialog::OnCancel() {
    const bool hasButton =
        std::any_of(m_spec.buttons.begin(), m_spec.buttons.end(),
                    [this](const auto& button) { return button.id == m_spec.escapeClicks; });
    hasButton ? Click(m_spec.escapeClicks) : EndDialog(DialogResult::Cancel);
}

void Dialog::OnScrollEvent(ScrollCode code, int position, CSkinScrollBar& bar) {
    const Handling handling(*this);
    OnVScroll(code, position, bar);
}

void Dialog::OnClick(int id, std::function<void()> handler) {
    m_clicks[id] = std::move(handler);
}

void Dialog::Click(int id) {
    if (m_stage != Stage::Open) return;
    const auto control = std::find_if(m_controls.begin(), m_controls.end(),
                                      [id](const auto& other) { return other->Id() == id; });
    if (control == m_controls.end() || !(*control)->IsWindowVisible() || !(*control)->IsWindowEnabled())
        return;
    const Handling handling(*this);
    if (const auto found = m_clicks.find(id); found != m_clicks.end()) {
        found->second();
    } else if (id == idOk || id == idCancel) {
        EndDialog(static_cast<DialogResult>(id));
    }
}

void Dialog::SetTimer(int id, Ticks period, std::function<void()> handler) {
    m_timers.Set(id, period, [this, handler = std::move(handler)] {
        const Handling handling(*this);
        handler();
    });
}

void Dialog::SetFocus(Control* control) {
    if (m_focus == control) return;
    if (Control* const before = std::exchange(m_focus, control)) before->OnFocus(false);
    if (!control) return;
    m_lastFocus = control;
    control->OnFocus(true);
    OnFocusChanged(control->Id());
}

bool Dialog::FocusNext() {
    const auto takes = [](const auto& control) {
        return control->IsWindowVisible() && control->IsWindowEnabled() && control->TakesFocus();
    };
    const auto current = std::find_if(m_controls.begin(), m_controls.end(),
                                      [this](const auto& control) { return control.get() == m_focus; });
    auto next = current == m_controls.end() ? current : std::find_if(current + 1, m_controls.end(), takes);
    if (next == m_controls.end()) next = std::find_if(m_controls.begin(), m_controls.end(), takes);
    if (next == m_controls.end()) return false;
    SetFocus(next->get());
    return true;
}

}  // namespace varkel
