// The main screen's top bar: the title, what the telephone is doing, and the signal. Dialog thread.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "session/screens.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// What the user can give up, by a button in the bar.
enum class CancelOffer { None, ModuleStart, DialledCall };

class TopBar {
  public:
    TopBar(Dialog& owner, const ScreenContext& context);

    // At the start, and after a change of language or skin.
    void Load();

    void SetStatusText(std::string text);
    const std::string& StatusText() const { return m_status; }
    void ShowStatusLine(bool show);
    void ShowOpenStep(OpenStep step, Ticks limit);
    void SetSignalLevel(int level);
    void SetNews(int unread, int missed);
    // The telephone's state may be another one.
    void Update();

    CancelOffer Offer() const;
    // The status line as it is seen now: a step and the seconds that are left for it, the other party and the
    // running time of a call, or what the session says.
    std::string StatusLine() const;
    // Whether the status line changes with time.
    bool Runs() const { return m_step || m_callStart; }

    void Draw(Canvas& canvas) const;

    static constexpr Rect place{0, 0, 800, 50};

  private:
    struct Step {
        OpenStep step = OpenStep::PowerOn;
        Ticks start = 0;
        Ticks limit = 0;  // 0 = none
    };
    using Picture = std::shared_ptr<const Bitmap>;

    int StatusRight() const;
    int DrawTitle(Canvas& canvas) const;
    void DrawIndicators(Canvas& canvas) const;
    void DrawIndicator(Canvas& canvas, const Picture& picture, int x) const;
    std::string StepLine() const;
    std::string CallLine() const;
    std::string Text(const char* key) const;
    Picture Indicator(const char* name) const;

    Dialog& m_owner;
    const ScreenContext& m_context;

    std::string m_title;
    Picture m_signals[6];
    Picture m_data[3];  // by DataState
    Picture m_newMessage;
    Picture m_missedCall;

    std::string m_status;
    bool m_showStatus = true;
    std::optional<Step> m_step;
    std::optional<Ticks> m_callStart;
    int m_level = 0;
    int m_unread = 0;
    int m_missed = 0;
};

}  // namespace varkel
