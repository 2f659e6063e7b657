// The screens of a program without a window: lines on a terminal.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/guarded.h"
#include "platform/language.h"
#include "platform/message_loop.h"
#include "platform/notices.h"
#include "platform/terminal.h"
#include "session/screens.h"
#include "session/session_state.h"

namespace varkel {

// How far the data link is, in a word.
const char* DataText(DataState state);

// What is shown is a line that begins with its kind in brackets. A question stays open until a line is typed;
// the newest question gets the line, and without one the line is a command.
class HeadlessScreens final : public Screens, public Notices {
  public:
    HeadlessScreens(Runtime& runtime, MessageLoop& loop, Terminal& terminal, const Language& language);
    ~HeadlessScreens() override;

    // Begins to listen. `state` is what Repaint shows, `onCommand` gets every line that answers no question.
    // Dialog thread, once.
    void Start(const SessionState& state, std::function<void(std::string_view)> onCommand);

    void SetStatusText(std::string_view text) override;
    void ShowStatusLine(bool) override {}
    void ShowOpenStep(OpenStep step, Ticks limit) override;
    void SetSignalLevel(int level) override;
    void Repaint() override;
    void EnableWindow(bool) override {}
    bool IsWindowEnabled() const override { return true; }
    void ReloadTexts() override {}
    void PlaceWindow(WindowPlace place) override;
    void Warn(WarnCode code) override;
    void ShowIncomingCall(bool show) override;
    void SetCallerText(std::string_view text) override;
    void ShowUssd(std::string_view text, bool replyExpected) override;
    bool HideUssd() override { return false; }
    void HideWriteMessage() override {}
    void ShowSendTip(SendTip tip) override;
    void ShowNewMessages() override;
    std::optional<CodeEntry> AskCodes(const CodeRequest& request) override;
    void CancelPrompts() override;

    void ShowMessageBox(std::string_view text, std::string_view caption) override;
    void MessageBox(std::string_view text, std::string_view caption, Event* closed) override;

  private:
    // An open question.
    struct Prompt {
        CodeRequest request;  // of a code prompt
        bool isBox = false;
        std::string text;  // of a box
        CodeEntry entry;
        bool firstDone = false;
        std::atomic<bool> accepted = false;
        std::atomic<bool> closed = false;
        std::shared_ptr<Event> answered;
    };
    using Prompts = std::vector<std::shared_ptr<Prompt>>;

    void OnLine(const std::string& line);
    void OnInputEnd();
    void OnCodeLine(Prompt& prompt, const std::string& line);
    void Close(Prompt& prompt, bool accepted);
    void PrintQuestion(const Prompt& prompt, bool second);
    // Puts the prompt on top and waits for its end, or for `ended`.
    void Await(const std::shared_ptr<Prompt>& prompt, Event* ended);
    // Prints a notice unless the same one was printed a moment ago.
    void PrintNotice(const std::string& line);

    Runtime& m_runtime;
    MessageLoop& m_loop;
    Terminal& m_terminal;
    const Language& m_language;
    const SessionState* m_state = nullptr;
    std::function<void(std::string_view)> m_onCommand;

    Guarded<Prompts> m_prompts;
    std::atomic<bool> m_inputEnded = false;
    std::atomic<int> m_signalLevel = -1;
    std::atomic<bool> m_rings = false;
    std::atomic<ScreenMode> m_mode = ScreenMode::Closed;
    std::atomic<DataState> m_data = DataState::Off;
    std::atomic<bool> m_hidden = false;

    struct LastNotice {
        std::string line;
        Ticks at = 0;
    };
    Guarded<LastNotice> m_lastNotice;
};

}  // namespace varkel
