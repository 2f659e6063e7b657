// Screens that are seen in the window and told on the terminal as well.
#pragma once

#include "ui/terminal/headless_screens.h"
#include "ui/toolkit/message_box.h"
#include "ui/window_screens.h"

namespace varkel {

// Questions are the window's; everything that only tells something is also a line. Any thread.
class NarratedScreens final : public Screens, public Notices {
  public:
    NarratedScreens(WindowScreens& window, NoticeBoxes& boxes, HeadlessScreens& lines, Terminal& terminal)
        : m_window(window), m_boxes(boxes), m_lines(lines), m_terminal(terminal) {}

    void SetStatusText(std::string_view text) override {
        m_lines.SetStatusText(text);
        m_window.SetStatusText(text);
    }
    void ShowStatusLine(bool show) override { m_window.ShowStatusLine(show); }
    void ShowOpenStep(OpenStep step, Ticks limit) override {
        m_lines.ShowOpenStep(step, limit);
        m_window.ShowOpenStep(step, limit);
    }
    void SetSignalLevel(int level) override {
        m_lines.SetSignalLevel(level);
        m_window.SetSignalLevel(level);
    }
    void Repaint() override {
        m_lines.Repaint();
        m_window.Repaint();
    }
    void ReloadTexts() override { m_window.ReloadTexts(); }
    void EnableWindow(bool enable) override { m_window.EnableWindow(enable); }
    bool IsWindowEnabled() const override { return m_window.IsWindowEnabled(); }
    void PlaceWindow(WindowPlace place) override {
        m_lines.PlaceWindow(place);
        m_window.PlaceWindow(place);
    }
    void Warn(WarnCode code) override {
        m_lines.Warn(code);
        m_window.Warn(code);
    }
    void ShowIncomingCall(bool show) override {
        m_lines.ShowIncomingCall(show);
        m_window.ShowIncomingCall(show);
    }
    void SetCallerText(std::string_view text) override {
        m_lines.SetCallerText(text);
        m_window.SetCallerText(text);
    }
    void ShowUssd(std::string_view text, bool replyExpected) override {
        m_lines.ShowUssd(text, replyExpected);
        m_window.ShowUssd(text, replyExpected);
    }
    bool HideUssd() override { return m_window.HideUssd(); }
    void HideWriteMessage() override { m_window.HideWriteMessage(); }
    void ShowSendTip(SendTip tip) override {
        m_lines.ShowSendTip(tip);
        m_window.ShowSendTip(tip);
    }
    void ShowNewMessages() override {
        m_terminal.PrintLine("[message] new");
        m_window.ShowNewMessages();
    }
    std::optional<CodeEntry> AskCodes(const CodeRequest& request) override {
        m_terminal.PrintLine("[input] " + request.title + " " + request.firstLabel);
        return m_window.AskCodes(request);
    }
    void CancelPrompts() override { m_window.CancelPrompts(); }

    void ShowMessageBox(std::string_view text, std::string_view caption) override {
        m_lines.ShowMessageBox(text, caption);
        m_boxes.ShowMessageBox(text, caption);
    }
    void MessageBox(std::string_view text, std::string_view caption, Event* closed) override {
        m_lines.ShowMessageBox(text, caption);
        m_boxes.MessageBox(text, caption, closed);
    }

  private:
    WindowScreens& m_window;
    NoticeBoxes& m_boxes;
    HeadlessScreens& m_lines;
    Terminal& m_terminal;
};

}  // namespace varkel
