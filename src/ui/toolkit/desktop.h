// What stands on the screen: a stack of dialogs. It paints them, gives each touch and key to the one that it
// is meant for, and shows the window while there is something to show. Dialog thread.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/display.h"
#include "platform/language.h"
#include "platform/message_loop.h"
#include "platform/notices.h"
#include "platform/window_messages.h"
#include "session/settings.h"
#include "ui/toolkit/palette.h"
#include "ui/toolkit/timers.h"

namespace varkel {

class Dialog;
class Control;

// What the screens are made with; all of it outlives them.
struct UiServices {
    MessageLoop& loop;
    Display& display;
    WindowMessages& windows;
    UnitFiles& files;
    Registry& registry;
    const Language& language;
};

class Desktop {
  public:
    explicit Desktop(const UiServices& services);
    // Every dialog has been closed.
    ~Desktop();

    // What the unit and other parts of the program add; all may stay empty.
    struct Hooks {
        // SipShowIM: the soft keyboard for a control of that dialog, or no keyboard.
        std::function<void(bool on, Dialog& owner)> sipShowIM;
        std::function<void(std::string_view text)> messageBox;
        // Sleep and WakeUp, which no dialog gets.
        std::function<void(KeyCode)> onSystemKey;
        // The system wants the window closed.
        std::function<void()> onClose;
    };
    Hooks hooks;

    MessageLoop& Loop() const { return m_services.loop; }
    WindowMessages& Windows() const { return m_services.windows; }
    const Language& Texts() const { return m_services.language; }
    Graphics& GetGraphics() const { return m_services.display.GetGraphics(); }
    Point GetCursorPos() const { return m_services.display.GetCursorPos(); }
    Settings& GetSettings() { return m_settings; }
    const Palette& Colors() const { return m_palette; }
    TimerNumbers& Numbers() { return m_timerNumbers; }
    bool ReadsRightToLeft() const { return m_services.language.ReadsRightToLeft(); }

    void Invalidate(const Rect& rect);
    // The dialog that keys go to; null when nothing is shown.
    Dialog* Active() const;
    // From the bottom to the top.
    const std::vector<Dialog*>& Stack() const { return m_stack; }

    // For dialogs: onto the top of the layer, and off the stack.
    void Add(Dialog& dialog);
    void AddAtBottom(Dialog& dialog);
    void Remove(Dialog& dialog);
    // A dialog was shown, hidden, enabled or disabled.
    void OnStateChanged();
    // Tells every dialog, whether it is seen or not.
    void OnSessionChanged();
    // What would be seen without this dialog and those above it; null when there is no memory for it.
    std::unique_ptr<Surface> PictureBelow(const Dialog& dialog);

  private:
    void Paint(Canvas& canvas, const Rect& damage, std::size_t count);
    void OnTouch(const TouchEvent& event);
    void OnKey(const KeyEvent& event);
    Dialog* DialogAt(Point at) const;
    // Nothing above it takes everything.
    bool IsReached(const Dialog& dialog) const;

    UiServices m_services;
    Settings m_settings;
    Palette m_palette;
    TimerNumbers m_timerNumbers;
    std::vector<Dialog*> m_stack;
    bool m_touching = false;
    Dialog* m_touched = nullptr;  // has the finger that is down; null when it was taken away
};

}  // namespace varkel
