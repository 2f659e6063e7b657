// Screens without a picture: what is shown is written down, and a script types the codes.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/guarded.h"
#include "session/screens.h"

namespace varkel::test {

class ScriptedScreens : public Screens {
  public:
    explicit ScriptedScreens(Runtime& runtime)
        : m_typed(runtime.CreateEvent(EventReset::Automatic)),
          m_cancel(runtime.CreateEvent(EventReset::Manual)) {}

    void SetStatusText(std::string_view text) override { Note("status " + std::string(text)); }
    void ShowStatusLine(bool show) override { Note(show ? "status line shown" : "status line hidden"); }
    void ShowOpenStep(OpenStep step, Ticks) override {
        Note("step " + std::to_string(static_cast<int>(step)));
    }
    void SetSignalLevel(int level) override { Note("signal " + std::to_string(level)); }
    void Repaint() override {
        if (onRepaint) onRepaint();
    }
    void EnableWindow(bool enable) override { Note(enable ? "enabled" : "disabled"); }
    bool IsWindowEnabled() const override { return true; }
    void ReloadTexts() override { Note("texts"); }
    void ShowIncomingCall(bool show) override {
        if (show) m_incomingCall = std::chrono::steady_clock::now();
        Note(show ? "incoming call" : "no incoming call");
    }
    void SetCallerText(std::string_view text) override { Note("caller " + std::string(text)); }
    void ShowUssd(std::string_view text, bool replyExpected) override {
        Note("ussd " + std::string(text) + (replyExpected ? "?" : ""));
    }
    bool HideUssd() override { return false; }
    void HideWriteMessage() override {}
    void ShowSendTip(SendTip tip) override { Note("tip " + std::to_string(static_cast<int>(tip))); }
    void ShowNewMessages() override { Note("new messages"); }
    void PlaceWindow(WindowPlace place) override { Note("place " + std::to_string(static_cast<int>(place))); }
    void Warn(WarnCode code) override { Note("warn " + std::to_string(static_cast<int>(code))); }

    // Takes the next typed entry that the dialog accepts; waits while nobody types.
    std::optional<CodeEntry> AskCodes(const CodeRequest& request) override {
        Note("ask " + request.firstLabel + request.secondLabel);
        m_cancel->Reset();
        for (;;) {
            if (request.cancelled() || m_cancel->Wait(0) == WaitResult::Object0) return std::nullopt;
            std::optional<std::optional<CodeEntry>> next;
            {
                std::lock_guard lock(m_mutex);
                if (!m_entries.empty()) {
                    next = std::move(m_entries.front());
                    m_entries.pop_front();
                }
            }
            if (!next) {
                m_typed->Wait(infiniteTicks);
                continue;
            }
            if (m_cancel->Wait(typingTakes) == WaitResult::Object0 || !*next) return std::nullopt;
            const auto fault = request.check((*next)->first, (*next)->second);
            if (!fault) return *next;
            Warn(*fault);
        }
    }

    void CancelPrompts() override {
        m_cancel->Set();
        m_typed->Set();
    }

    // For the next question; several are taken in order.
    void Type(std::string first, std::string second = "") {
        Enter(CodeEntry{std::move(first), std::move(second)});
    }
    void TypeCancel() { Enter(std::nullopt); }

    std::vector<std::string> Shown() const { return m_shown.Get(); }
    void Forget() { m_shown.Set({}); }
    int Count(std::string_view text) {
        return m_shown.With([&](const auto& shown) {
            return static_cast<int>(std::count(shown.begin(), shown.end(), text));
        });
    }

    // When the screen was last ordered, by the clock of the system.
    std::chrono::steady_clock::time_point LastIncomingCall() const { return m_incomingCall; }

    static constexpr Ticks typingTakes = 3000;

    std::function<void()> onRepaint;  // any thread

  private:
    void Enter(std::optional<CodeEntry> entry) {
        {
            std::lock_guard lock(m_mutex);
            m_entries.push_back(std::move(entry));
        }
        m_typed->Set();
    }

    void Note(std::string text) {
        m_shown.With([&](auto& shown) { shown.push_back(std::move(text)); });
    }

    std::shared_ptr<Event> m_typed;
    std::shared_ptr<Event> m_cancel;
    std::atomic<std::chrono::steady_clock::time_point> m_incomingCall;
    std::mutex m_mutex;
    std::deque<std::optional<CodeEntry>> m_entries;
    Guarded<std::vector<std::string>> m_shown;
};

}  // namespace varkel::test
