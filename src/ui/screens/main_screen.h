// The main screen: the top bar and eight large cells, through which every function is reached. Dialog thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "ui/screens/screen_context.h"
#include "ui/screens/top_bar.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// Where the cells lead to. Each opens a screen and returns when that has been left.
struct Navigation {
    std::function<void()> dialPad;
    std::function<void()> messages;
    std::function<void()> settings;
    std::function<void()> callRecords;
    std::function<void()> phoneBook;
};

class MainScreen final : public Dialog {
  public:
    MainScreen(ScreenContext& context, Navigation navigation);

    using Dialog::BringToTop;
    using Dialog::SendToBottom;

    TopBar& Bar() { return m_bar; }
    // The telephone's state may be another one: mode, call, data link.
    void Update();
    // The language has changed.
    void ReloadTexts();
    // What the bar and the cells count.
    void SetNews(int unread, int missed);

    std::vector<TouchTarget> Targets() const override;

    enum class Action {
        None,
        DialPad,
        Messages,
        Settings,
        CallRecords,
        PhoneBook,
        Redial,
        WinWap,
        Ie,
        HangUp,
        Speaker
    };
    struct Cell {
        Rect place;
        std::string_view pressed;  // the picture of the cell under a finger
        std::string_view caption;
        Action action = Action::None;
        std::string_view released{};  // drawn over the cell after its action
    };
    static constexpr int cellCount = 8;
    static constexpr int exitCell = 10;
    static constexpr int noCell = -1;
    static constexpr int exitControl = 1075;

  private:
    void OnInitDialog() override;
    void OnPaint(Canvas& canvas) override;
    void OnTouch(const TouchEvent& event) override;
    void OnTouchCancel() override;
    void OnCancel() override;

    ScreenMode Mode() const { return m_context.session.State().MainScreenMode; }
    const Cell& CellAt(int index) const;
    bool Live(int index) const;
    bool ExitLive() const { return Mode() != ScreenMode::InCall; }
    int HitTest(Point at) const;
    bool Inert() const;
    void LoadMode();
    void Press(int index);
    void Release(Point at);
    void Run(int index);
    void Exit();
    void DrawCaption(Canvas& canvas, const Cell& cell, ColorRef color) const;
    void DrawBadge(Canvas& canvas, int index, int count);

    ScreenContext& m_context;
    const Navigation m_navigation;
    TopBar m_bar;
    std::optional<ScreenMode> m_shownMode;
    std::shared_ptr<const Bitmap> m_picture;  // of the mode
    int m_pressed = noCell;
    int m_released = noCell;
    int m_unread = 0;
    int m_missed = 0;
};

}  // namespace varkel
