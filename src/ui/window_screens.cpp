#include "ui/window_screens.h"

#include <algorithm>
#include <utility>

namespace varkel {

namespace {

const char* TipKey(SendTip tip) {
    switch (tip) {
        case SendTip::Hidden: return "";
        case SendTip::Sending: return "IDS_SENDINGNOTE";
        case SendTip::Sent: return "IDS_SENDNOTE_SUS";
        case SendTip::Failed: return "IDS_SENDNOTE_FAIL";
    }
    return "";
}

}  // namespace

WindowScreens::Shown::Shown(ScreenContext& context, Navigation navigation,
                            std::function<void(CancelOffer)> onCancel)
    : main(context, std::move(navigation)),
      cancel(context.desktop, std::move(onCancel)),
      callIn(context),
      ussd(context),
      tip(context.desktop) {}

WindowScreens::WindowScreens(Runtime& runtime, MessageLoop& loop, Desktop& desktop)
    : m_runtime(runtime), m_loop(loop), m_desktop(desktop), m_self(std::make_shared<WindowScreens*>(this)) {}

WindowScreens::~WindowScreens() {
    *m_self = nullptr;
    CancelPrompts();
}

void WindowScreens::Start(ScreenContext& context, ScreenHooks hooks) {
    m_context = &context;
    m_hooks = std::move(hooks);
    m_shown =
        std::make_shared<Shown>(context, m_hooks.navigation, [this](CancelOffer offer) { GiveUp(offer); });
}

void WindowScreens::Stop() {
    CancelPrompts();
    m_warnings.clear();
    m_shown.reset();
}

void WindowScreens::Post(std::function<void(Shown&)> work) {
    m_loop.Post([self = m_self, work = std::move(work)] {
        if (!*self) return;
        // A screen that ends the program from within keeps the screens until it has returned.
        if (const auto shown = (*self)->m_shown) work(*shown);
    });
}

void WindowScreens::Update(Shown& shown) {
    const auto count = [](const std::function<int()>& counter) { return counter ? counter() : 0; };
    shown.main.SetNews(count(m_hooks.unreadMessages), count(m_hooks.newMissedCalls));
    shown.main.Update();
    RaiseForCall(shown);
    shown.cancel.SetOffer(shown.main.IsWindowVisible() ? shown.main.Bar().Offer() : CancelOffer::None);
    m_desktop.OnSessionChanged();
}

// Hanging up must be at hand, whatever screen is open; that one comes back when the call has ended.
void WindowScreens::RaiseForCall(Shown& shown) {
    const bool inCall = m_context->session.State().MainScreenMode == ScreenMode::InCall;
    if (std::exchange(m_inCall, inCall) == inCall) return;
    inCall ? shown.main.BringToTop() : shown.main.SendToBottom();
}

void WindowScreens::GiveUp(CancelOffer offer) {
    switch (offer) {
        case CancelOffer::None: break;
        case CancelOffer::ModuleStart: m_context->session.CancelOpen(); break;
        case CancelOffer::DialledCall: m_context->session.Calls().HangUp(); break;
    }
}

void WindowScreens::SetStatusText(std::string_view text) {
    Post([this, status = std::string(text)](Shown& shown) {
        shown.main.Bar().SetStatusText(DispRightToLeft(status));
        Update(shown);
    });
}

void WindowScreens::ShowStatusLine(bool show) {
    Post([show](Shown& shown) { shown.main.Bar().ShowStatusLine(show); });
}

void WindowScreens::ShowOpenStep(OpenStep step, Ticks limit) {
    Post([this, step, limit](Shown& shown) {
        shown.main.Bar().ShowOpenStep(step, limit);
        Update(shown);
    });
}

void WindowScreens::SetSignalLevel(int level) {
    Post([level](Shown& shown) { shown.main.Bar().SetSignalLevel(level); });
}

void WindowScreens::Repaint() {
    Post([this](Shown& shown) { Update(shown); });
}

void WindowScreens::ReloadTexts() {
    Post([](Shown& shown) { shown.main.ReloadTexts(); });
}

void WindowScreens::EnableWindow(bool enable) {
    m_enabled = enable;
    Post([enable](Shown& shown) { shown.main.EnableWindow(enable); });
}

void WindowScreens::PlaceWindow(WindowPlace place) {
    Post([this, place](Shown& shown) { Place(shown, place); });
}

void WindowScreens::Place(Shown& shown, WindowPlace place) {
    if (place == WindowPlace::ZeroSize) return;
    const bool show = place != WindowPlace::Hidden;
    if (show && !shown.main.IsOpen()) {
        shown.main.Show();
        shown.main.EnableWindow(m_enabled);
    }
    // The screens above it go and come with it, except those that were hidden before; a call stays.
    const std::vector<Dialog*> hidden = std::exchange(m_hidden, {});
    for (Dialog* const dialog : std::vector<Dialog*>(m_desktop.Stack())) {
        if (dialog->Spec().layer != DialogLayer::Screens) continue;
        const bool wasHidden = std::find(hidden.begin(), hidden.end(), dialog) != hidden.end();
        if (show ? wasHidden : dialog->IsWindowVisible() || wasHidden) {
            dialog->ShowWindow(show);
            if (!show) m_hidden.push_back(dialog);
        }
    }
    if (show) shown.main.ShowWindow(true);
    Update(shown);
}

void WindowScreens::Warn(WarnCode code) {
    Post([this, code](Shown&) {
        const auto [place, isNew] = m_warnings.try_emplace(code);
        if (!isNew) return;
        place->second = std::make_shared<CWarnDlg>(m_desktop, code, WarnButtonMode::Ok);
        place->second->Show([this, code](DialogResult) { m_warnings.erase(code); });
    });
}

void WindowScreens::ShowIncomingCall(bool show) {
    Post([this, show](Shown& shown) {
        if (show) {
            shown.callIn.Show();
        } else {
            shown.callIn.EndDialog(DialogResult::Cancel);
        }
        Update(shown);
    });
}

void WindowScreens::SetCallerText(std::string_view text) {
    Post([caller = std::string(text)](Shown& shown) { shown.callIn.SetCallerText(caller); });
}

void WindowScreens::ShowUssd(std::string_view text, bool replyExpected) {
    m_ussdShown = true;
    Post([this, answer = std::string(text), replyExpected](Shown& shown) {
        shown.ussd.SetText(answer, replyExpected);
        shown.ussd.Show([this](DialogResult) { m_ussdShown = false; });
    });
}

bool WindowScreens::HideUssd() {
    if (!m_ussdShown.exchange(false)) return false;
    Post([](Shown& shown) { shown.ussd.EndDialog(DialogResult::Cancel); });
    return true;
}

void WindowScreens::HideWriteMessage() {
    Post([this](Shown&) {
        if (m_hooks.hideWriteMessage) m_hooks.hideWriteMessage();
    });
}

void WindowScreens::ShowSendTip(SendTip tip) {
    Post([this, tip](Shown& shown) {
        if (tip == SendTip::Hidden) {
            shown.tip.Hide();
        } else {
            shown.tip.ShowTip(DispRightToLeft(m_desktop.Texts().LoadString(TipKey(tip))));
        }
    });
}

void WindowScreens::ShowNewMessages() {
    Post([this](Shown& shown) {
        Update(shown);
        if (m_hooks.showNewMessages) m_hooks.showNewMessages();
    });
}

std::optional<CodeEntry> WindowScreens::AskCodes(const CodeRequest& request) {
    const auto prompt = std::make_shared<Prompt>();
    prompt->request = request;
    prompt->answered = m_runtime.CreateEvent(EventReset::Manual);
    m_prompts.With([&](std::vector<PromptPtr>& prompts) { prompts.push_back(prompt); });
    const bool asked = (!request.cancelled || !request.cancelled()) && m_loop.Post([self = m_self, prompt] {
        if (*self) (*self)->OpenPrompt(prompt);
    });
    if (asked) prompt->answered->Wait(infiniteTicks);
    m_prompts.With([&](std::vector<PromptPtr>& prompts) { std::erase(prompts, prompt); });
    return asked ? prompt->entry : std::nullopt;
}

void WindowScreens::OpenPrompt(const PromptPtr& prompt) {
    const bool wanted = m_prompts.With([&](const std::vector<PromptPtr>& prompts) {
        return std::find(prompts.begin(), prompts.end(), prompt) != prompts.end();
    });
    if (!wanted || !m_shown) {
        prompt->answered->Set();
        return;
    }
    prompt->dialog = std::make_unique<CNumberDlg>(*m_context, prompt->request);
    prompt->dialog->Show([prompt](DialogResult result) {
        if (result == DialogResult::Ok) prompt->entry = prompt->dialog->Entry();
        prompt->dialog.reset();
        prompt->answered->Set();
    });
}

void WindowScreens::CancelPrompts() {
    const auto prompts = m_prompts.With([](std::vector<PromptPtr>& open) { return std::exchange(open, {}); });
    for (const PromptPtr& prompt : prompts) {
        const bool posted = m_loop.Post([prompt] {
            if (prompt->dialog) {
                prompt->dialog->EndDialog(DialogResult::Cancel);
            } else {
                prompt->answered->Set();
            }
        });
        if (!posted) prompt->answered->Set();
    }
}

}  // namespace varkel
