// The session's screens as windows: what any thread asks for is shown by the dialog thread.
#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/guarded.h"
#include "session/screens.h"
#include "ui/screens/call_in_dlg.h"
#include "ui/screens/cancel_button.h"
#include "ui/screens/main_screen.h"
#include "ui/screens/number_dlg.h"
#include "ui/screens/ussd_dlg.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

// What lies behind the main screen.
struct ScreenHooks {
    Navigation navigation;
    std::function<void()> hideWriteMessage;
    std::function<void()> showNewMessages;
    // Counted whenever the main screen is brought up to date; both are quick.
    std::function<int()> unreadMessages;
    std::function<int()> newMissedCalls;
};

// Made before the session, and destroyed after it, on the dialog thread. Until Start nothing is shown.
class WindowScreens final : public Screens {
  public:
    WindowScreens(Runtime& runtime, MessageLoop& loop, Desktop& desktop);
    ~WindowScreens() override;

    // Dialog thread, once, before the session starts.
    void Start(ScreenContext& context, ScreenHooks hooks);
    // Closes every screen, before the session goes. Dialog thread.
    void Stop();

    void SetStatusText(std::string_view text) override;
    void ShowStatusLine(bool show) override;
    void ShowOpenStep(OpenStep step, Ticks limit) override;
    void SetSignalLevel(int level) override;
    void Repaint() override;
    void ReloadTexts() override;
    void EnableWindow(bool enable) override;
    bool IsWindowEnabled() const override { return m_enabled; }
    void PlaceWindow(WindowPlace place) override;
    void Warn(WarnCode code) override;
    void ShowIncomingCall(bool show) override;
    void SetCallerText(std::string_view text) override;
    void ShowUssd(std::string_view text, bool replyExpected) override;
    bool HideUssd() override;
    void HideWriteMessage() override;
    void ShowSendTip(SendTip tip) override;
    void ShowNewMessages() override;
    std::optional<CodeEntry> AskCodes(const CodeRequest& request) override;
    void CancelPrompts() override;

  private:
    // All of the screens that the session shows; they exist from Start to Stop.
    struct Shown {
        Shown(ScreenContext& context, Navigation navigation, std::function<void(CancelOffer)> onCancel);

        MainScreen main;
        CancelButton cancel;
        CCallInDlg callIn;
        CUssdDlg ussd;
        CPromptDlg tip;
    };
    // A question for codes; its dialog belongs to the dialog thread.
    struct Prompt {
        CodeRequest request;
        std::shared_ptr<Event> answered;
        std::optional<CodeEntry> entry;  // before the event
        std::unique_ptr<CNumberDlg> dialog;
    };
    using PromptPtr = std::shared_ptr<Prompt>;

    // Does `work` on the dialog thread, with the screens, unless these have been closed by then.
    void Post(std::function<void(Shown&)> work);
    void Update(Shown& shown);
    void Place(Shown& shown, WindowPlace place);
    void RaiseForCall(Shown& shown);
    void GiveUp(CancelOffer offer);
    void OpenPrompt(const PromptPtr& prompt);

    Runtime& m_runtime;
    MessageLoop& m_loop;
    Desktop& m_desktop;
    ScreenContext* m_context = nullptr;
    ScreenHooks m_hooks;
    std::shared_ptr<Shown> m_shown;
    std::map<WarnCode, std::shared_ptr<CWarnDlg>> m_warnings;  // on the screen
    std::vector<Dialog*> m_hidden;                             // with the window; some may be gone
    bool m_inCall = false;
    std::atomic<bool> m_enabled = true;
    std::atomic<bool> m_ussdShown = false;
    Guarded<std::vector<PromptPtr>> m_prompts;
    std::shared_ptr<WindowScreens*> m_self;  // posted work finds nobody there afterwards
};

}  // namespace varkel
